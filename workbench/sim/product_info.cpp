#include "workbench/sim/product_info.h"

#include "workbench/sim/text.h"

namespace Sim {

using namespace Steinberg;

ProductInfo::ProductInfo () : Object ("ProductInfo", "product", Side::Host)
{
    setStrings ("Sim Host", "1.0.0", "Sim Works");
}

void ProductInfo::setStrings (const std::string& s1, const std::string& s2, const std::string& s3)
{
    strings_[0] = toU16 (s1);
    strings_[1] = toU16 (s2);
    strings_[2] = toU16 (s3);
}

void ProductInfo::setRawString (int index, std::u16string text)
{
    strings_[index] = std::move (text);
}

const char16* PLUGIN_API ProductInfo::getProductString1 ()
{
    CallLog::record (Side::Host, "IHostProductInfo::getProductString1", label ());
    return units (strings_[0]);
}

const char16* PLUGIN_API ProductInfo::getProductString2 ()
{
    CallLog::record (Side::Host, "IHostProductInfo::getProductString2", label ());
    return units (strings_[1]);
}

const char16* PLUGIN_API ProductInfo::getProductString3 ()
{
    CallLog::record (Side::Host, "IHostProductInfo::getProductString3", label ());
    return units (strings_[2]);
}

bool ProductInfo::query (const TUID iid, void** obj)
{
    return offer<IHostProductInfo> (iid, obj, this)
           || offerUnknown (iid, obj, static_cast<IHostProductInfo*> (this));
}

} // namespace Sim
