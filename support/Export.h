// Marks the support classes that the library's public signatures bring to its callers.
//
// The support libraries are linked into libvq_client_common.so; what does not bear VQ_SUPPORT_API
// stays hidden in it.
#ifndef VQ_SUPPORT_EXPORT_H
#define VQ_SUPPORT_EXPORT_H

// Exports a class or a function of a support library.
#define VQ_SUPPORT_API __attribute__((visibility("default")))

#endif  // VQ_SUPPORT_EXPORT_H
