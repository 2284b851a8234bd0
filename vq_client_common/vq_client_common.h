// Every public header of libvq_client_common.so.
#ifndef VQ_CLIENT_COMMON_VQ_CLIENT_COMMON_H
#define VQ_CLIENT_COMMON_VQ_CLIENT_COMMON_H

#include <vq_client_common/Export.h>

#endif  // VQ_CLIENT_COMMON_VQ_CLIENT_COMMON_H
