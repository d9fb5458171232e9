#pragma once

#include "frame/host_types.h"
#include "platform/objc/handle.h"

// Between host variants and framework objects of any kind. Variants that are answered are the caller's; framework
// objects are autoreleased, or borrowed from the host object that holds them. What has no counterpart gives nil.
//
// Values nested too deeply, as those that contain themselves are, raise NSInvalidArgumentException.

REALvariant NewVariantFromNSObject(NSObject object);
// An empty string is an empty NSString.
NSObject GetVariantAsNSObject(REALvariant variant);
NSObject GetObjectAsNSObject(REALobject object);
// Of the types that convert alike everywhere: whole and real numbers and dates. Nil for any other.
NSObject GetNumberOrDateAsNSObject(REALvariant variant, std::int32_t type);
