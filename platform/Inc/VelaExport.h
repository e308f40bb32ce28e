#ifndef NYXCONFIG_VELAEXPORT_H
#define NYXCONFIG_VELAEXPORT_H

/// Marks what libvelautil and libvelatrace export; users of the libraries see the same declaration.
#define VELA_EXPORT __attribute__((visibility("default")))

#endif
