#pragma once

#include "frame/host_interface.h"

// A global method of the host language, found by its declaration when it is first needed, and asked for again at each
// use while the host lacks it.
template <FixedString Declaration, class Signature>
class GlobalMethod {
 public:
  // The host's function, or null.
  Signature* find() {
    Signature* method = method_.load(std::memory_order_relaxed);
    if (method == nullptr) {
      method = reinterpret_cast<Signature*>(REALLoadFrameworkMethod(Declaration.text));
      method_.store(method, std::memory_order_relaxed);
    }
    return method;
  }

 private:
  std::atomic<Signature*> method_{nullptr};
};
