// Proofs of a password that a client sends to a server instead of the password itself.
//
// Terms. The *checksum* of a password is what the server stores and what a client sends, or starts
// from, while the server's parameter "PasswordEncode" is on. A *challenge* is one of two strings
// that the server chooses for one login; the *response* proves that the client knows the password
// without sending it. Both are pure functions, so that a server can reproduce them.
//
//   std::string checksum, response;
//   ChkSum("secret", checksum);        // "K7gNU3sdo-OL..."; callers keep 8 characters
//   MakeChallengeResponse(first, second, checksum.substr(0, 8), response);
//
// Bytes, for a server:
//
//   checksum = base64url(SHA-256(text)), without the closing "=": 43 characters of
//              A-Z a-z 0-9 - _
//   response = hex(HMAC-SHA-256(key = password, message)), 64 characters of 0-9 a-f, where
//   message  = uint64(length of first) first uint64(length of second) second
//              with uint64 in eight bytes, the most significant first
//
// The lengths keep ("ab", "c") apart from ("a", "bc").
//
// Both raise std::runtime_error, with no secret in its text, when the cryptographic library fails,
// and leave the result empty then. The result may be the same object as an argument; its former
// content is wiped.
#ifndef VQ_SUPPORT_SECURITY_CHALLENGERESPONSE_H
#define VQ_SUPPORT_SECURITY_CHALLENGERESPONSE_H

#include <span>
#include <string>

// Sets `result` to the checksum of `text`: 43 printable characters, also for an empty string.
void ChkSum(const std::string& text, std::string& result);

// Sets `response` to the answer to the two challenges, keyed by `password`: 64 hexadecimal digits.
// Each string may contain any bytes and may be empty.
void MakeChallengeResponse(const std::string& first, const std::string& second,
                           const std::string& password, std::string& response);

namespace vq {

// Appends two digits of 0-9 a-f for each byte.
void AppendHex(std::span<const unsigned char> bytes, std::string& text);

}  // namespace vq

#endif  // VQ_SUPPORT_SECURITY_CHALLENGERESPONSE_H
