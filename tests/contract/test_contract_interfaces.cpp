#include "module/host/HostContract.h"
#include "module/host/ModuleExports.h"

#include <gtest/gtest.h>

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

} // namespace

TEST(ContractIds, EveryInterfaceIdIsDistinct) {
    const std::vector<GUID> ids = {
        IID_IQXParmira,
        IID_IMessage_LanguageChanged,
        IID_IMessage_MDIActive,
        IID_IMessage_ModuleEvent,
        IID_IMessage_ModuleUploadEvent,
        IID_IMessage_ModulePropertyUpdateEvent,
        IID_IRefreshQueryEvent,
        IID_IHostMessageBus,
        IID_IHostModuleManager,
        IID_IHostProjectRoot,
        IID_IHostUiService,
        IID_IHostTabManager,
        IID_IHostVarUtil,
        IID_IHostDeviceHelper,
        IID_IHostProductDb,
        IID_IHostRefreshService,
        IID_IHostTransferService,
        IID_IHostAccessService,
        IID_IHostParamRecordFactory,
        IID_IHostVarPicker,
        IID_IHostHelpService,
        IID_IHostWorkerThread,
        IID_IParamFile,
        IID_IMemoryStream,
        IID_IHostProgressBox,
        IID_IOscilloscopePanel,
    };
    const std::set<GUID> unique(ids.begin(), ids.end());
    EXPECT_EQ(unique.size(), ids.size());
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

namespace {

// A module object with several listener bases, as the panel has.
class MultiListener : public IMessage_LanguageChanged,
                      public IMessage_MDIActive,
                      public IMessage_ModuleEvent {
public:
    void OnLanguageChanged() override { ++languageCalls; }
    void OnActiveViewNotify1(uintptr_t) override { ++viewCalls; }
    void OnActiveViewNotify2(uintptr_t) override { ++viewCalls; }
    void OnModuleNotify1(uintptr_t) override {}
    void OnModuleRemoved(const CString& key) override { removed = key; }
    void OnModuleNotify3(uintptr_t) override {}
    void OnModuleRenamed(const CString&, const CString& name) override { renamed = name; }

    int languageCalls = 0;
    int viewCalls = 0;
    CString removed;
    CString renamed;
};

// The host's side of the bus convention: it keeps IBaseInterface pointers by event id
// and converts each back to the interface of its event.
class FakeBus : public IHostMessageBus {
public:
    BOOL Subscribe(const GUID& id, IBaseInterface* sink) override {
        subs.push_back({id, sink});
        return TRUE;
    }
    BOOL Unsubscribe(const GUID& id, IBaseInterface* sink) override {
        for (auto it = subs.begin(); it != subs.end(); ++it) {
            if (it->id == id && it->sink == sink) {
                subs.erase(it);
                return TRUE;
            }
        }
        return FALSE;
    }
    void RaiseLanguage() {
        for (auto& s : subs)
            if (s.id == IID_IMessage_LanguageChanged)
                SinkAs<IMessage_LanguageChanged>(s.sink)->OnLanguageChanged();
    }
    void RaiseView() {
        for (auto& s : subs)
            if (s.id == IID_IMessage_MDIActive)
                SinkAs<IMessage_MDIActive>(s.sink)->OnActiveViewNotify2(0);
    }
    void RaiseRemoved(const CString& key) {
        for (auto& s : subs)
            if (s.id == IID_IMessage_ModuleEvent)
                SinkAs<IMessage_ModuleEvent>(s.sink)->OnModuleRemoved(key);
    }
    struct Sub {
        GUID id;
        IBaseInterface* sink;
    };
    std::vector<Sub> subs;
};

} // namespace

TEST(ContractSinks, EachListenerBaseIsReachedThroughItsOwnSink) {
    MultiListener panel;
    FakeBus bus;
    IHostMessageBus* asService = &bus;
    asService->Subscribe(IID_IMessage_LanguageChanged, AsSink<IMessage_LanguageChanged>(&panel));
    asService->Subscribe(IID_IMessage_MDIActive, AsSink<IMessage_MDIActive>(&panel));
    asService->Subscribe(IID_IMessage_ModuleEvent, AsSink<IMessage_ModuleEvent>(&panel));

    // The three sinks are three different addresses of one object.
    EXPECT_NE(bus.subs[0].sink, bus.subs[1].sink);
    EXPECT_NE(bus.subs[1].sink, bus.subs[2].sink);

    bus.RaiseLanguage();
    bus.RaiseView();
    bus.RaiseRemoved("M1");
    EXPECT_EQ(panel.languageCalls, 1);
    EXPECT_EQ(panel.viewCalls, 1);
    EXPECT_EQ(panel.removed, "M1");

    // Unsubscribing with the same conversion finds the subscription.
    EXPECT_TRUE(asService->Unsubscribe(IID_IMessage_MDIActive, AsSink<IMessage_MDIActive>(&panel)));
    bus.RaiseView();
    EXPECT_EQ(panel.viewCalls, 1);
}

namespace {

// A host object that offers two services from one class, as a host may.
class TwoServices : public IHostTabManager, public IHostParamRecordFactory {
public:
    BOOL CreateTab(HWND& parent, RECT&, uintptr_t, const CString& caption,
                   const CString&) override {
        parent = nullptr;
        lastCaption = caption;
        return FALSE;
    }
    void ActivateTab(HWND) override {}
    void RenameTab(HWND, const CString& caption) override { lastCaption = caption; }
    void CloseTab(HWND) override {}
    IRWDataItem* NewParamRecord() override {
        ++records;
        return nullptr;
    }
    CString lastCaption;
    int records = 0;
};

TwoServices g_services;

void Query(uintptr_t context, const GUID* iid, void** out) {
    *out = nullptr;
    EXPECT_EQ(context, uintptr_t(42));
    if (*iid == IID_IHostTabManager)
        *out = static_cast<IHostTabManager*>(&g_services);
    else if (*iid == IID_IHostParamRecordFactory)
        *out = static_cast<IHostParamRecordFactory*>(&g_services);
}

template <class I> I* Ask(QueryInterfaceCallback cb, uintptr_t context) {
    void* out = nullptr;
    cb(context, &I::kIID, &out);
    return static_cast<I*>(out);
}

} // namespace

TEST(ContractQuery, CallbackGivesAPointerOfTheAskedInterface) {
    QueryInterfaceCallback cb = &Query;
    auto* tabs = Ask<IHostTabManager>(cb, 42);
    auto* factory = Ask<IHostParamRecordFactory>(cb, 42);
    ASSERT_NE(tabs, nullptr);
    ASSERT_NE(factory, nullptr);
    tabs->RenameTab(nullptr, "参数列表");
    EXPECT_EQ(factory->NewParamRecord(), nullptr);
    EXPECT_EQ(g_services.lastCaption, "参数列表");
    EXPECT_EQ(g_services.records, 1);
    EXPECT_EQ(Ask<IHostVarUtil>(cb, 42), nullptr) << "a service the host lacks is null";
}
