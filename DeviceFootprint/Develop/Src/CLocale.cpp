#include "CLocale.h"

namespace KvDeviceFootprint
{

locale_t CLocale()
{
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
    return locale;
}

} // namespace KvDeviceFootprint
