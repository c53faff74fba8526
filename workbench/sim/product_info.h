// The host product's three strings.
#pragma once

#include "workbench/sim/object.h"

#include "host/service_interfaces.h"

#include <string>

namespace Sim {

class ProductInfo : public Object, public Steinberg::IHostProductInfo
{
public:
    ProductInfo ();

    /** UTF-8 in; stored as UTF-16 and served in position order. */
    void setStrings (const std::string& s1, const std::string& s2, const std::string& s3);
    /** For malformed UTF-16 and the like. */
    void setRawString (int index, std::u16string text);

    const Steinberg::char16* PLUGIN_API getProductString1 () override;
    const Steinberg::char16* PLUGIN_API getProductString2 () override;
    const Steinberg::char16* PLUGIN_API getProductString3 () override;

    SIM_FUNKNOWN

protected:
    bool query (const Steinberg::TUID iid, void** obj) override;

private:
    std::u16string strings_[3];
};

} // namespace Sim
