#include "platform/contacts/constants.h"

#define AB_DEFINE_CONSTANT(name, text) const NSString name(NSConstantString(text));
AB_STRING_CONSTANTS(AB_DEFINE_CONSTANT, AB_DEFINE_CONSTANT)
#undef AB_DEFINE_CONSTANT
