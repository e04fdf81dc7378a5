/* The program's identity, for C++ and for the resource script alike (plain macros, because the
   resource compiler reads nothing else). */
#ifndef VANTOR_RESOURCES_VERSION_H
#define VANTOR_RESOURCES_VERSION_H

#define VANTOR_TITLE "Tessmar Vantor Update"
#define VANTOR_COMPANY "Tessmar Instruments"
#define VANTOR_PRODUCT "Tessmar Vantor Update Utility"
#define VANTOR_MAJOR 2
#define VANTOR_MINOR 5
#define VANTOR_REVISION 31

#endif
