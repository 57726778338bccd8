// bzSingletonAccessAction: the action of a singleton's access function.
#ifndef BZBASE_SINGLETON_H
#define BZBASE_SINGLETON_H

// Every value other than 0 deletes, including values without a name.
enum bzSingletonAccessAction : int {
  bz_singleton_get = 0,    // returns the object, after creating it if necessary
  bz_singleton_delete = 1  // deletes the object
};

#endif
