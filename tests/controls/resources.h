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

#define IDD_BUTTONS 130
#define IDC_OPEN 131
#define IDC_MORE 132
#define IDC_LATER 133

#define IDR_MENU 140
#define IDR_NO_SUBMENU 141
#define ID_COPY 142
#define ID_PASTE 143
#define ID_TOP 144
#define ID_OTHER 145

#define IDB_FRAME 150

#endif
