// The device loader's inside: reads a parsed description into a DeviceDescription and
// refuses it at the first fault, naming the place. Split over Loader*.cpp by section of
// the file: fields, value meanings, parameters, groups and tables.
#pragma once

#include "JsonTree.h"
#include "TextPoolBuilder.h"
#include "zorhost/device/DeviceDescription.h"

#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace zorhost::device {

// Thrown inside the loader only; ParseDeviceJson turns it into a LoadError.
struct Refusal {
    std::string place;
    std::string message;
};

[[noreturn]] void Refuse(const std::string& place, const std::string& message);

// Where an entry came from, kept only while loading, for messages.
struct Origin {
    std::string place; // parameters[3] "H02-01"
    int axis = kCommonScope;
    std::string Where(const char* field = "") const;
};

// What a parameter's entry holds beyond its ParameterDef, until it has a place.
struct PendingLinks {
    std::string minLink;
    std::string maxLink;
    TextRef info;
    TextRef infoEn;
};

bool IsIntegerType(DataType t);
void TypeRange(DataType t, double& lo, double& hi);
DataType TypeFromName(std::string_view name); // Unknown for a name no type has
std::string Hex(std::uint32_t v);             // "0x0229"

class Loader {
public:
    Loader(DeviceDescription& d, std::size_t expectedTexts)
        : d_(d), pool_(d.textPool, expectedTexts) {}

    void Load(const json::Object& root);

private:
    using Object = json::Object;
    using Array = json::Array;
    using Value = json::Value;

    DeviceDescription& d_;
    TextPoolBuilder pool_;
    std::map<std::string, std::uint32_t, std::less<>> valueInfoIds_;
    std::vector<Origin> origins_; // one per parameter
    std::vector<PendingLinks> links_;

    // Fields (LoaderFields.cpp)
    TextRef Intern(std::string_view s) { return pool_.Intern(s); }
    void Keys(const Object& o, const std::string& place,
              std::initializer_list<std::string_view> allowed);
    Value Need(const Object& o, const char* key, const std::string& place);
    std::string_view String(const Object& o, const char* key, const std::string& place,
                            bool required = false);
    TextRef Text(const Object& o, const char* key, const std::string& place,
                 bool required = false) {
        return Intern(String(o, key, place, required));
    }
    // A name, key or code: lists, tables and tab-separated output show it on one line.
    std::string_view OneLine(const Object& o, const char* key, const std::string& place,
                             bool required = false);
    TextRef OneLineText(const Object& o, const char* key, const std::string& place,
                        bool required = false) {
        return Intern(OneLine(o, key, place, required));
    }
    double Number(const Value& v, const std::string& place, const char* key = nullptr);
    double Number(const Object& o, const char* key, const std::string& place, double fallback,
                  bool required = false);
    long Integer(const Object& o, const char* key, const std::string& place, long fallback, long lo,
                 long hi, bool required = false);
    bool Flag(const Object& o, const char* key, const std::string& place, bool fallback);
    Array ArrayOf(const Object& o, const char* key, const std::string& place,
                  bool required = false);
    Object ObjectOf(const Value& v, const std::string& place);
    std::vector<std::uint8_t> Label(const Object& o, const char* key, const std::string& place,
                                    bool required);

    // Value meanings (LoaderValueInfos.cpp)
    void LoadValueInfos(const Object& root);
    std::uint32_t LoadValueInfo(const Object& o, const std::string& place);
    std::vector<ValueOption> LoadOptions(const Array& a, const std::string& place);
    void LoadBits(const Array& a, const std::string& place, ValueInfo& info);
    void LoadBitRanges(const Array& a, const std::string& place, ValueInfo& info);
    void LoadDigits(const Array& a, const std::string& place, ValueInfo& info);
    void CheckValueInfo(const ParameterDef& p, const std::string& place);

    // Product and parameters (LoaderParameters.cpp)
    void LoadProduct(const Object& o);
    ParameterDef LoadParameter(const Object& o, const std::string& place, PendingLinks& l);
    void LoadLimits(const Object& o, const std::string& place, ParameterDef& p,
                    PendingLinks& links);
    void LoadParameters(const Object& root);
    void LoadAxis(const Object& ax, const std::string& place, std::uint32_t a,
                  const std::vector<ParameterDef>& pattern,
                  const std::vector<PendingLinks>& patternLinks,
                  const std::vector<std::string>& patternPlaces);
    void BuildIndexes();
    void ResolveLinks();
    std::uint32_t ResolveCode(std::string_view code, int scope) const;

    // Groups and tables (LoaderTables.cpp)
    std::uint32_t LoadGroup(const Object& o, const std::string& place, int scope);
    void LoadMembers(const Object& o, const std::string& place, int scope, GroupDef& g);
    void LoadGroupSet(const Array& groups, const std::string& groupsPlace, const Array& categories,
                      const std::string& categoriesPlace, int scope, GroupSet& set);
    void LoadNamed(const Array& a, const std::string& place, std::vector<NamedVariable>& out);
    void LoadConnectors(const Array& a);
    void LoadPerUnit(const Array& a);
    void CheckTables(); // per-unit ids and connector kinds that parameters rely on
};

} // namespace zorhost::device
