// The one include of the ORB's own headers.
//
// Everything else in the tree uses the standard C++ mapping of CORBA, which is the same for every
// product. Where products differ (how an interface's reference type is called, how a nil reference
// is tested), the portable form is: X_ptr or X::_ptr_type for the type, CORBA::is_nil for the test.
#ifndef VQ_SUPPORT_ORB_CORBA_H
#define VQ_SUPPORT_ORB_CORBA_H

#include <omniORB4/CORBA.h>
#include <omniORB4/Naming.hh>

#endif  // VQ_SUPPORT_ORB_CORBA_H
