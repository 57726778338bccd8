/* Identifiers of the gallery's resources, a hundred for each family of pages. */
#ifndef GALLERY_RESOURCES_H
#define GALLERY_RESOURCES_H

/* imaging: from 400; controls: from 700; dialogs: from 800 */

/* 64 x 64 pixels */
#define IDB_LANDSCAPE 400
#define IDB_SIGN 401
/* 32 x 32 pixels */
#define IDB_OPEN 410
#define IDB_SAVE 411
#define IDB_PRINT 412
#define IDB_TICK 413

#endif
