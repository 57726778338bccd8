/* Identifiers of the resources. */
#ifndef PARTS_LIST_RESOURCES_H
#define PARTS_LIST_RESOURCES_H

#define IDB_ADD 100
#define IDR_MORE 101

#define IDD_MAIN 200
#define IDC_ADD 201
#define IDC_MORE 202
#define IDC_SAVE_PICTURE 203
#define IDC_UNIT 204
#define IDC_PARTS 205
#define IDC_PICTURE 206
#define IDC_PROGRESS 207
#define IDC_STATUS 208

#define ID_DUPLICATE 300
#define ID_REMOVE 301
#define ID_COMPONENTS 302
#define ID_TRACE 303

#define IDD_NAME_PAGE 400
#define IDC_NAME 401
#define IDD_LENGTH_PAGE 410
#define IDC_LENGTH 411
#define IDC_LENGTH_UNIT 412
#define IDD_SUMMARY_PAGE 420
#define IDC_SUMMARY 421

#endif
