/* Identifiers of the resources of sample_application. */
#ifndef TESTS_FRAMEWORK_SAMPLE_APPLICATION_H
#define TESTS_FRAMEWORK_SAMPLE_APPLICATION_H

#define IDD_MAIN 100
#define IDD_NAME 101
#define IDD_SIZE 102

#define IDC_AMOUNT 1001
#define IDC_LAMP 1002
#define IDC_SETTINGS 1003
#define IDC_NAME 1004
#define IDC_WIDTH 1005

#define IDS_TITLE 200

#endif
