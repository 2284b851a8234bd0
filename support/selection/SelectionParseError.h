// Where and why a selection's text does not parse.
//
//   NAME LIKE PAY*
//             ^ position 10: expected a value in single quotes, found PAY*
#ifndef VQ_SUPPORT_SELECTION_SELECTIONPARSEERROR_H
#define VQ_SUPPORT_SELECTION_SELECTIONPARSEERROR_H

#include <cstddef>
#include <string>

#include <support/Export.h>

namespace vq {

// Thread contract: a plain value.
struct VQ_SUPPORT_API SelectionParseError {
  std::size_t position = 0;  // bytes before the fault, from 0
  std::string expected;      // what may stand there, in words
  std::string found;         // what stands there, at most 20 bytes of it, or "the end of the text"

  // "at position 10: expected a value in single quotes, found PAY*"
  std::string AsString() const;
};

}  // namespace vq

#endif  // VQ_SUPPORT_SELECTION_SELECTIONPARSEERROR_H
