// bzCopy: the tag of an explicit copy constructor.
#ifndef BZBASE_COPY_H
#define BZBASE_COPY_H

// The first argument: Thing(bz_copy, other) copies if Thing has no copy constructor without a tag.
enum bzCopy { bz_copy };

#endif
