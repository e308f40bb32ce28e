#ifndef INSTRUMENT_PRINTING_H
#define INSTRUMENT_PRINTING_H

#include <CNyxConfig.h>

#include <string>

/// The heading of a step.
void PrintStep(const std::string& text);

/// What the facade holds, for people: the device, the boards as a table and as a tree, the software.
void PrintInstrument(KvOrdo::CNyxConfig& config);

#endif
