// The identifiers of resources.rc.
#ifndef TESTS_CONTROLS_RESOURCES_H
#define TESTS_CONTROLS_RESOURCES_H

#define IDD_NUMBERS 100
#define IDC_NUMBER 101
#define IDC_LINES 102

#endif
