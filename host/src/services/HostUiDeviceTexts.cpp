#include "zorhost/device/DeviceDescription.h"
#include "zorhost/services/HostUiService.h"

#include <string>

namespace zorhost {

namespace {

class Feeder {
public:
    Feeder(CHostUiService& service, const device::DeviceDescription& device)
        : m_service(service), m_device(device) {}

    void Add(device::TextRef text, device::TextRef english) {
        if (text.empty() || english.empty())
            return;
        m_service.AddTranslation(CString(std::string(m_device.Text(text)).c_str()),
                                 CString(std::string(m_device.Text(english)).c_str()));
        ++m_added;
    }
    void Add(const std::vector<device::ValueOption>& options) {
        for (const device::ValueOption& option : options)
            Add(option.text, option.textEn);
    }
    void AddCategories(const device::GroupSet& set) {
        for (const device::CategoryDef& category : set.categories)
            Add(category.description, category.descriptionEn);
    }
    int Added() const { return m_added; }

private:
    CHostUiService& m_service;
    const device::DeviceDescription& m_device;
    int m_added = 0;
};

} // namespace

int AddDeviceTranslations(CHostUiService& service, const device::DeviceDescription& device) {
    Feeder feed(service, device);
    feed.Add(device.product.name, device.product.nameEn);
    for (std::uint32_t i = 0; i < device.parameters.size(); ++i) {
        feed.Add(device.parameters[i].name, device.parameters[i].nameEn);
        const device::ParameterInfo info = device.InfoOf(i);
        feed.Add(info.text, info.textEn);
    }
    for (const device::ValueInfo& info : device.valueInfos) {
        feed.Add(info.enumeration);
        for (const device::BitEntry& bit : info.bits)
            feed.Add(bit.text, bit.textEn);
        for (const device::BitRange& range : info.ranges) {
            feed.Add(range.text, range.textEn);
            feed.Add(range.options);
        }
        for (const device::DigitField& digit : info.digits) {
            feed.Add(digit.text, digit.textEn);
            feed.Add(digit.options);
        }
    }
    for (const device::GroupDef& group : device.groups)
        feed.Add(group.description, group.descriptionEn);
    feed.AddCategories(device.groupSet);
    for (const device::AxisDef& axis : device.axes) {
        feed.Add(axis.name, axis.nameEn);
        feed.AddCategories(axis.groupSet);
    }
    for (const device::PerUnitTable& table : device.perUnitTables)
        for (const device::PerUnitBase& base : table.bases)
            feed.Add(base.name, base.nameEn);
    return feed.Added();
}

} // namespace zorhost
