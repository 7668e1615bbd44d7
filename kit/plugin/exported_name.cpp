#include "kit/plugin/exported_name.h"

#include <cctype>
#include <cstring>

namespace kit
{

namespace
{

bool isOneOf(char character, const char *characters)
{
    return character != '\0' && std::strchr(characters, character) != nullptr;
}

// Where the first name of what a C++ symbol stands for begins ("Itanium C++ ABI", 5.1), after the marks of
// tables, of guards and of nested names.
const char *firstName(const char *symbol)
{
    const char *name = symbol + 2;
    if ((name[0] == 'T' && isOneOf(name[1], "ISV")) || (name[0] == 'G' && name[1] == 'V'))
        name += 2;
    while (isOneOf(*name, "NKROL"))
        ++name;
    return name;
}

bool isOfALibrary(const char *symbol)
{
    if (std::strncmp(symbol, "_Z", 2) != 0)
        return false;
    const char *name = firstName(symbol);
    if (name[0] == 'S')
        return isOneOf(name[1], "tabsiod");
    while (std::isdigit(static_cast<unsigned char>(*name)) != 0)
        ++name;
    return isOneOf(name[0], "Qq") && std::isupper(static_cast<unsigned char>(name[1])) != 0;
}

} // namespace

bool isEntryPoint(const QByteArray &name)
{
    return name == "CreateDriver" || name == "qt_plugin_instance" || name == "qt_plugin_query_metadata" ||
           name == "qt_plugin_query_metadata_v2" || name == "qt_plugin_query_verification_data";
}

bool isOfTheSystem(const ElfFile::Symbol &symbol)
{
    const char *const name = symbol.name.constData();
    const bool isReserved =
        name[0] == '_' && (name[1] == '_' || std::islower(static_cast<unsigned char>(name[1])) != 0);
    return isReserved || (symbol.isWeak && isOfALibrary(name));
}

} // namespace kit
