// bzRef: a counted reference.
#ifndef BZBASE_REF_H
#define BZBASE_REF_H

#include <memory>

// Keeps an object alive together with its other references; the last reference deletes the object. Counting is
// thread-safe, access to the object is not.
template <typename Object>
using bzRef = std::shared_ptr<Object>;

#endif
