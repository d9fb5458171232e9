#pragma once

#include "platform/foundation/cf_base.h"
#include "platform/foundation/url.h"
#include "platform/foundation/url_text.h"
#include "platform/objc/retained.h"

// URLs as Foundation itself sees them.
namespace foundation {

struct UrlObject : objc::Object {
  UrlText url;
};

Retained<NSURL> newUrl(UrlText url);

inline const UrlText& textOf(NSURL url) { return static_cast<const UrlObject*>(url.get())->url; }
inline const UrlText& textOf(CFURLRef url) { return textOf(bridge<NSURL>(url)); }

}  // namespace foundation
