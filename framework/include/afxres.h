// Identifiers that MFC and the system give to windows and commands, for sources and resource scripts.
#ifndef FRAMEWORK_AFXRES_H
#define FRAMEWORK_AFXRES_H

/* The buttons of a wizard. */
#define ID_WIZBACK 0x3023
#define ID_WIZNEXT 0x3024
#define ID_WIZFINISH 0x3025

#endif
