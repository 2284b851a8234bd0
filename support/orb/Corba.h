// The one include of the ORB's own headers. Everything else uses the standard C++ mapping of CORBA,
// which is the same for every product. Where products differ (how an interface's reference type is
// called, how a nil reference is tested), the portable form is: X_ptr or X::_ptr_type for the type,
// CORBA::is_nil with the .in() of a _var for the test. Skeletons are in <vq_idl/NameS.h>.
#ifndef VQ_SUPPORT_ORB_CORBA_H
#define VQ_SUPPORT_ORB_CORBA_H

#if !defined(VQ_ORB_TAO)  // which the CMake package and the pkg-config file set
#include <omniORB4/CORBA.h>
#include <omniORB4/Naming.hh>
#else
// In TAO each of these also initializes its library.
#include <orbsvcs/CosNamingC.h>
#include <tao/AnyTypeCode/Any.h>
#include <tao/AnyTypeCode/TypeCode.h>
#include <tao/AnyTypeCode/TypeCode_Constants.h>
#include <tao/BiDir_GIOP/BiDirGIOP.h>
#include <tao/PortableServer/PortableServer.h>
#include <tao/corba.h>
#endif

#endif  // VQ_SUPPORT_ORB_CORBA_H
