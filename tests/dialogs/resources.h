// The identifiers of resources.rc.
#ifndef TESTS_DIALOGS_RESOURCES_H
#define TESTS_DIALOGS_RESOURCES_H

#define IDD_NAME_PAGE 110
#define IDD_PLACE_PAGE 111
#define IDD_SUMMARY_PAGE 112
#define IDD_EXTRA_PAGE 113

#define IDC_NAME 1001
#define IDC_IN_LIBRARY 1003

#define IDS_TITLE 200
#define IDS_MISSING 201 /* there is no such text */

#endif
