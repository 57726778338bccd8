/* Identifiers of the resources of the imaging tests. */
#ifndef TESTS_IMAGING_RESOURCES_H
#define TESTS_IMAGING_RESOURCES_H

/* The same four by two pixels in several depths: magenta and (1, 2, 3) by turns, from the lower left. */
#define IDB_ONE_BIT 101
#define IDB_FOUR_BITS 104
#define IDB_EIGHT_BITS 108
#define IDB_TWENTY_FOUR_BITS 124
#define IDB_THIRTY_TWO_BITS 132

#define IDB_MAGENTA 140 /* one pixel */
#define IDB_DAMAGED 141 /* its header has a size that no header has */
#define IDB_SQUARE 142  /* four by four pixels */
#define IDB_ALPHA 143   /* two by two pixels with alpha */
#define IDR_EFFECTS 150 /* a PNG file: the golden sheet of the effects */
#define IDB_MISSING 199 /* there is no such bitmap */

#endif
