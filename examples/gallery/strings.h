/* Identifiers of the gallery's texts, which are in a module of their own: another one makes another language. */
#ifndef GALLERY_STRINGS_H
#define GALLERY_STRINGS_H

#define IDS_BASE 1000 /* the text for the reference "{N}" is IDS_BASE + N */

#endif
