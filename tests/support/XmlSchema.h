#ifndef NYXCONFIG_XMLSCHEMA_H
#define NYXCONFIG_XMLSCHEMA_H

#include <string>
#include <vector>

namespace NyxTest
{

/// Path of a schema that the library installs.
std::string SchemaFile(const std::string& name);

/// What xmllint says about files.
struct SchemaVerdict
{
    bool ran;           ///< xmllint was there, and the schema itself is good.
    bool wellFormed;    ///< All files are well-formed XML.
    bool valid;         ///< All files are well-formed and valid.
    std::string report; ///< Its output.
};

SchemaVerdict CheckSchema(const std::string& schemaName, const std::vector<std::string>& files);

/// Expects that there are files and that all are valid.
void ExpectValid(const std::string& schemaName, const std::vector<std::string>& files);

/// The text with "?" for each character reference that XML 1.0 forbids; only then can a standard tool read it.
std::string WithoutForbiddenReferences(const std::string& text);

} // namespace NyxTest

#endif
