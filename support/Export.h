// Marks what libvq_client_common.so exports: its own interface, and the support classes in the
// signatures of it. Everything else in the library is hidden.
#ifndef VQ_SUPPORT_EXPORT_H
#define VQ_SUPPORT_EXPORT_H

// Exports a class, a function or an object of the library.
#define VQ_CLIENT_COMMON_API __attribute__((visibility("default")))

#endif  // VQ_SUPPORT_EXPORT_H
