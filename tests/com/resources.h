// The identifiers of resources.rc.
#ifndef TESTS_COM_RESOURCES_H
#define TESTS_COM_RESOURCES_H

#define IDD_HOST 100
#define IDC_BEFORE 101
#define IDC_PLACEHOLDER 102
#define IDC_AFTER 103

#endif
