#pragma once

#include "platform/foundation/autorelease_pool.h"
#include "platform/foundation/exception.h"
#include "platform/objc/retained.h"

#include <exception>

// Runs the body in an autorelease pool of its own, which has ended when the call returns and when what the body throws
// goes on.
template <class Body>
void inPool(Body body) {
  Retained<NSException> raised;  // it may be among what the pool holds
  std::exception_ptr thrown;
  {
    const AutoreleasePool pool;
    try {
      body();
    } catch (const NSException& exception) {
      raised = Retained<NSException>::share(exception);
      thrown = std::current_exception();
    } catch (...) {
      thrown = std::current_exception();
    }
  }
  raised.autorelease();
  if (thrown) std::rethrow_exception(thrown);
}
