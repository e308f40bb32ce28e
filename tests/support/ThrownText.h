#ifndef NYXCONFIG_THROWNTEXT_H
#define NYXCONFIG_THROWNTEXT_H

#include "CNyxConfigException.h"

#include <exception>
#include <string>
#include <typeinfo>

namespace NyxTest
{

inline const std::string NothingThrown = "(nothing thrown)";
inline const std::string PlainException = "(plain exception)";

/// What leaves a call: the text of a CNyxConfigException, PlainException for an object of exactly std::exception, as
/// the document throws it, or NothingThrown. Any other exception passes through.
template<class Call>
std::string ThrownText(const Call& call)
{
    try {
        call();
    } catch (const KvOrdo::CNyxConfigException& exception) {
        return exception.getMessage();
    } catch (const std::exception& exception) {
        if (typeid(exception) == typeid(std::exception)) {
            return PlainException;
        }
        throw;
    }
    return NothingThrown;
}

} // namespace NyxTest

#endif
