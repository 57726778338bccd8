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
/* 160 x 96 pixels of 8 bits */
#define IDB_DAY 420
#define IDB_NIGHT 421

#define IDR_SAVE_MENU 700
#define ID_SAVE_COPY 701
#define ID_SAVE_ALL 702

/* dialogs */
#define IDD_PART_NAME 800
#define IDD_PART_PLACE 801
#define IDD_PART_SUMMARY 802
#define IDC_PART_NAME 810
#define IDC_IN_PROJECT 811
#define IDC_IN_LIBRARY 812
#define IDC_PART_SUMMARY 813

#endif
