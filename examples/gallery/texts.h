/* Identifiers of the gallery's texts. They are in a module of their own, which a translation replaces. */
#ifndef GALLERY_TEXTS_H
#define GALLERY_TEXTS_H

#define IDS_BASE 1000 /* the text for the reference "{N}" is IDS_BASE + N */

#endif
