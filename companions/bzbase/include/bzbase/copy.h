// bzCopy: the tag of a copy constructor that wants to be asked for.
#ifndef BZBASE_COPY_H
#define BZBASE_COPY_H

// Passed first: Thing(bz_copy, other) copies where Thing has no copy constructor that applies by itself.
enum bzCopy { bz_copy };

#endif
