// bzSingletonAccessAction: what the access function of a singleton is to do.
#ifndef BZBASE_SINGLETON_H
#define BZBASE_SINGLETON_H

// Any value but 0 deletes, those without a name too.
enum bzSingletonAccessAction : int {
  bz_singleton_get = 0,    // gives the object, which is made if it is not there
  bz_singleton_delete = 1  // deletes the object
};

#endif
