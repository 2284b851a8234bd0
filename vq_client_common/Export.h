// Marks what libvq_client_common.so promises to its callers.
//
// Everything in the library is hidden unless it bears VQ_CLIENT_COMMON_API.
#ifndef VQ_CLIENT_COMMON_EXPORT_H
#define VQ_CLIENT_COMMON_EXPORT_H

// Exports a class, a function or an object of the library.
#define VQ_CLIENT_COMMON_API __attribute__((visibility("default")))

#endif  // VQ_CLIENT_COMMON_EXPORT_H
