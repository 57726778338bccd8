/* Identifiers of the resources of the framework's tests. */
#ifndef TESTS_FRAMEWORK_RESOURCES_H
#define TESTS_FRAMEWORK_RESOURCES_H

#define IDD_PLAIN 100
#define IDC_PUSH 1001
#define IDC_EDIT 1002
#define IDC_LIST 1003

#define IDD_FIRST_PAGE 110
#define IDD_SECOND_PAGE 111
#define IDD_THIRD_PAGE 112

#define IDD_MISSING 199 /* there is no such dialog */

#define IDS_FIRST 200
#define IDS_LONG 201
#define IDS_ACCENTS 202
#define IDS_MISSING 203 /* in a block that is there */
#define IDS_FAR 5000    /* in a block that is not */

#endif
