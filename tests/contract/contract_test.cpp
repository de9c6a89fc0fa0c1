// The host contract as code sees it: interfaces deleted through their base, distinct ids
// in their registry form, and the shared helpers CTemplateList, CLocalResource and Variant.
#include "module/LocalResource.h"
#include "module/TemplateList.h"
#include "module/host/HostContract.h"
#include "module/host/ModuleExports.h"
#include "module/host/Variant.h"

#include <afx/CString.h>
#include <afx/afxres.h>

#include <gtest/gtest.h>

#include <iterator>
#include <set>
#include <type_traits>
#include <vector>

namespace {

template <class... I> constexpr bool AllDeleteThroughBase() {
    return ((std::has_virtual_destructor_v<I> &&
             (std::is_base_of_v<IBaseInterface, I> || std::is_base_of_v<IBaseEvent, I>)) &&
            ...);
}

// Objects the caller deletes, or hands to another host object, must be destructible
// through the contract's base; a missing base would leak or slice the host's object.
static_assert(
    AllDeleteThroughBase<
        IQXParmira, IMessage_LanguageChanged, IMessage_MDIActive, IMessage_ModuleEvent,
        IMessage_ModuleUploadEvent, IMessage_ModulePropertyUpdateEvent, IRefreshQueryEvent,
        IHostMessageBus, IHostModuleManager, IHostProjectRoot, IHostUiService, IHostTabManager,
        IHostVarUtil, IHostDeviceHelper, IHostProductDb, IHostRefreshService, IHostTransferService,
        IHostAccessService, IHostParamRecordFactory, IHostVarPicker, IHostHelpService,
        IHostWorkerThread, IParamFile, IMemoryStream, IHostProgressBox, IOscilloscopePanel,
        IHostProject, IHostWorkspace, IHostModuleList, IHostDeviceModule, IHostProductInfo,
        IHostProductRecord, IHostCommState, IVarDatabase, IVarStore, IParamFileTable, IVarObjEx,
        IVarAttr, IValueInfo, IValueInfoList, IValueInfoEntry, IVarCatalog, IGroupSet, IGroupNode,
        IGroupCategory, IHostAxis, IHostAxisList, IConnectorTable, IConnectorGroup, IFunctionTable,
        IFunctionEntry, IPerUnitTable, IPerUnitBase, IPerUnitEntry, IRWDataItem, IHostRefreshQuery,
        IHostRefreshItem, IHostWindowTranslator, IHostProgressStep>());

// The file table is a store: code that walks a module's variables walks a file's too.
static_assert(std::is_base_of_v<IVarStore, IParamFileTable>);

template <class... Id> bool AllDistinct(const Id&... ids) {
    return std::set<GUID>{ids...}.size() == sizeof...(ids);
}

TEST(ContractIds, EveryInterfaceIdIsDistinct) {
    EXPECT_TRUE(AllDistinct(
        IID_IQXParmira, IID_IMessage_LanguageChanged, IID_IMessage_MDIActive,
        IID_IMessage_ModuleEvent, IID_IMessage_ModuleUploadEvent,
        IID_IMessage_ModulePropertyUpdateEvent, IID_IRefreshQueryEvent, IID_IHostMessageBus,
        IID_IHostModuleManager, IID_IHostProjectRoot, IID_IHostUiService, IID_IHostTabManager,
        IID_IHostVarUtil, IID_IHostDeviceHelper, IID_IHostProductDb, IID_IHostRefreshService,
        IID_IHostTransferService, IID_IHostAccessService, IID_IHostParamRecordFactory,
        IID_IHostVarPicker, IID_IHostHelpService, IID_IHostWorkerThread, IID_IParamFile,
        IID_IMemoryStream, IID_IHostProgressBox, IID_IOscilloscopePanel));
}

TEST(ContractIds, RegistryTextAndBytesAgree) {
    // The ids are written in registry form; the bytes must come out in the usual layout
    // (Data1 first, big groups as numbers, the last eight as bytes).
    char text[39];
    GuidToString(IID_IQXParmira, text);
    EXPECT_STREQ(text, "{9CC81723-4D17-4AA5-9B2B-865BD951DD58}");
    EXPECT_EQ(IID_IQXParmira.Data1, 0x9CC81723u);
    EXPECT_EQ(IID_IQXParmira.Data2, 0x4D17u);
    EXPECT_EQ(IID_IQXParmira.Data3, 0x4AA5u);
    EXPECT_EQ(IID_IQXParmira.Data4[0], 0x9Bu);
    EXPECT_EQ(IID_IQXParmira.Data4[7], 0x58u);
}

// Each test starts and ends on a known current handle, whatever ran before.
class LocalResourceTest : public ::testing::Test {
protected:
    void SetUp() override {
        saved = AfxGetResourceHandle();
        host = AfxCreateResourceHandle("host");
        module = AfxCreateResourceHandle("module");
        AfxSetResourceHandle(host);
    }
    void TearDown() override {
        AfxSetResourceHandle(saved);
        AfxFreeResourceHandle(module);
        AfxFreeResourceHandle(host);
    }
    HINSTANCE saved = nullptr;
    HINSTANCE host = nullptr;
    HINSTANCE module = nullptr;
};

TEST_F(LocalResourceTest, NestedScopesUnwindInOrder) {
    HINSTANCE other = AfxCreateResourceHandle("other");
    {
        CLocalResource none(nullptr); // no module handle: the current one stays
        EXPECT_EQ(AfxGetResourceHandle(), host);
    }
    {
        CLocalResource outer(module);
        EXPECT_EQ(outer.GetPreviousHandle(), host);
        {
            CLocalResource inner(other);
            EXPECT_EQ(AfxGetResourceHandle(), other);
        }
        EXPECT_EQ(AfxGetResourceHandle(), module);
    }
    EXPECT_EQ(AfxGetResourceHandle(), host);
    AfxFreeResourceHandle(other);
}

TEST_F(LocalResourceTest, RestoresWhenLeftEarlyAndAfterAChangeInside) {
    auto work = [&](bool leaveEarly) {
        CLocalResource scope(module);
        if (leaveEarly)
            return 1;
        // Something inside switched handles and didn't put it back.
        AfxSetResourceHandle(nullptr);
        return 2;
    };
    EXPECT_EQ(work(true), 1);
    EXPECT_EQ(AfxGetResourceHandle(), host);
    EXPECT_EQ(work(false), 2);
    EXPECT_EQ(AfxGetResourceHandle(), host);
}

// Counts its destructions, so a test can tell whether the list freed it.
struct Tracked {
    explicit Tracked(int* deaths, int id = 0) : deaths(deaths), id(id) {}
    ~Tracked() { ++*deaths; }
    int* deaths;
    int id;
};

using PtrList = CTemplateList<Tracked*, Tracked*>;

std::vector<int> Ids(const PtrList& list) {
    std::vector<int> ids;
    for (int i = 0; i < list.GetCount(); ++i)
        ids.push_back(list.GetAt(i)->id);
    return ids;
}

TEST(TemplateList, AddAndRemoveKeepArrayAndMapTogether) {
    int deaths = 0;
    Tracked a(&deaths, 1), b(&deaths, 2);
    PtrList list;
    EXPECT_FALSE(list.Add(&a, nullptr));
    EXPECT_TRUE(list.Add(&a, &a));
    EXPECT_FALSE(list.Add(&a, &a)) << "a key the map holds is refused";
    EXPECT_TRUE(list.Add(&b, &b));
    EXPECT_EQ(list.GetCount(), 2);

    // With distinct key and value types the key alone decides.
    CTemplateList<CString, Tracked*> byText;
    EXPECT_TRUE(byText.Add("All", &a));
    EXPECT_FALSE(byText.Add("All", &b));
    EXPECT_TRUE(byText.Add("ALL", &b)) << "keys compare case-sensitively";
    EXPECT_FALSE(byText.Add("x", nullptr));
    Tracked* found = nullptr;
    EXPECT_TRUE(byText.Lookup("All", found));
    EXPECT_EQ(found, &a);
    EXPECT_FALSE(byText.Lookup("all", found));

    // Remove takes the array entry and the map entry together.
    Tracked c(&deaths, 3);
    list.Add(&c, &c);
    EXPECT_TRUE(list.Remove(&b));
    EXPECT_EQ(Ids(list), (std::vector<int>{1, 3}));
    EXPECT_FALSE(list.Contains(&b));
    EXPECT_FALSE(list.Remove(&b)) << "a key the map no longer holds";
    EXPECT_TRUE(list.Add(&b, &b)) << "a removed key can come again, at the end";
    EXPECT_EQ(Ids(list), (std::vector<int>{1, 3, 2}));

    // Moving an entry, as the custom group editor moves rows: out by index, back in at a
    // new place. The map must follow, or the re-insert is refused as a held key.
    ASSERT_TRUE(list.RemoveAt(0));
    EXPECT_FALSE(list.Contains(&a));
    ASSERT_TRUE(list.InsertAt(1, &a, &a));
    EXPECT_EQ(Ids(list), (std::vector<int>{3, 1, 2}));
    EXPECT_FALSE(list.RemoveAt(3));
    EXPECT_TRUE(list.InsertAt(99, &c, &c) == FALSE) << "held key refused wherever it goes";
    EXPECT_EQ(deaths, 0);
}

TEST(TemplateList, OwnsNothingUnlessAskedToDelete) {
    int deaths = 0;
    {
        PtrList list;
        auto* a = new Tracked(&deaths, 1);
        auto* b = new Tracked(&deaths, 2);
        list.Add(a, a);
        list.Add(b, b);
        list.RemoveAll();
        EXPECT_EQ(list.GetCount(), 0);
        EXPECT_EQ(deaths, 0) << "RemoveAll frees nothing";
        list.Add(a, a);
        list.Add(b, b);
        list.Remove(a);
        EXPECT_EQ(deaths, 0) << "Remove frees nothing";
        delete a;
        list.DeleteAll();
        EXPECT_EQ(deaths, 2);
        EXPECT_TRUE(list.IsEmpty());
    }
    EXPECT_EQ(deaths, 2) << "the list's destructor frees nothing";

    // One value under two keys is deleted once.
    deaths = 0;
    CTemplateList<int, Tracked*> shared;
    auto* s = new Tracked(&deaths);
    shared.Add(1, s);
    shared.Add(2, s);
    shared.DeleteAll();
    EXPECT_EQ(deaths, 1);
}

// A destructor that looks at the list that owns it, as a registry entry might.
struct Observer {
    Observer(CTemplateList<Observer*, Observer*>* owner, std::vector<int>* seen)
        : owner(owner), seen(seen) {}
    ~Observer() { seen->push_back(owner->GetCount()); }
    CTemplateList<Observer*, Observer*>* owner;
    std::vector<int>* seen;
};
TEST(TemplateList, DeleteAllEmptiesBeforeDeleting) {
    CTemplateList<Observer*, Observer*> list;
    std::vector<int> seen;
    for (int i = 0; i < 3; ++i) {
        auto* o = new Observer(&list, &seen);
        list.Add(o, o);
    }
    list.DeleteAll();
    EXPECT_EQ(seen, (std::vector<int>{0, 0, 0}));
}

// All different: each is equal only to a copy of itself, with no conversion between tags,
// and only the empty and the null one are "no value" (zero and an empty text are values).
TEST(Variant, EqualityIsExactOnTagAndPayload) {
    using V = Variant;
    const Variant all[] = {V(),         V::Null(),     V::I4(0),       V::I4(1),   V::I4(2),
                           V::UI4(1),   V::R4(1.0f),   V::R8(1.0),     V::Str(""), V::Str("a"),
                           V::Str("A"), V::Bool(true), V::Bool(false), V::I2(-1),  V::I2(1),
                           V::UI2(1),   V::UI2(2),     V::I1(1),       V::UI1(1),  V::Date(1.0),
                           V::Date(2.0)};
    for (size_t i = 0; i < std::size(all); ++i) {
        EXPECT_EQ(all[i].IsEmpty(), i == 0) << i;
        EXPECT_EQ(all[i].IsEmptyOrNull(), i < 2) << i;
        for (size_t j = 0; j < std::size(all); ++j) {
            const Variant copy = all[j];
            EXPECT_EQ(all[i] == copy, i == j) << i << " against " << j;
        }
    }
}

TEST(Variant, CopiesOwnTheirTextAndNothingIsLeftBehind) {
    Variant original = Variant::Str("H00-10");
    Variant copy = original;
    copy.bstrVal += "x";
    EXPECT_EQ(original.bstrVal, "H00-10");
    Variant assigned;
    assigned = original;
    original.bstrVal = "changed";
    EXPECT_EQ(assigned, Variant::Str("H00-10"));
    // A number written over a text, or a clear, leaves no text behind.
    assigned = Variant::I4(7);
    EXPECT_EQ(assigned, Variant::I4(7));
    EXPECT_TRUE(assigned.bstrVal.IsEmpty());
    copy.Clear();
    EXPECT_TRUE(copy.IsEmpty());
    EXPECT_TRUE(copy.bstrVal.IsEmpty());
}

} // namespace
