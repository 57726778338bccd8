// bzRef: a counted reference.
#ifndef BZBASE_REF_H
#define BZBASE_REF_H

#include <memory>

// Keeps an object alive together with its other references; the last one deletes it. The counting is safe between
// threads, the object is not.
template <typename Object>
using bzRef = std::shared_ptr<Object>;

#endif
