// The identifiers of resources.rc.
#ifndef TESTS_CONTROLS_RESOURCES_H
#define TESTS_CONTROLS_RESOURCES_H

#define IDD_NUMBERS 100
#define IDC_NUMBER 101
#define IDC_LINES 102

#define IDD_LENGTH 110
#define IDC_LENGTH 111
#define IDC_WIDTH 112

#define IDD_STEPS 120
#define IDC_NUMBER_1 121
#define IDC_NUMBER_2 122
#define IDC_NUMBER_3 123
#define IDC_NAME 124
#define IDC_DEPTH 125
#define IDC_COLOR 126
#define IDC_ROUND 127
#define IDC_BACK 128
#define IDC_NEXT 129

#endif
