#include "module/host/HostContract.h"
#include "module/host/ModuleExports.h"

#include <gtest/gtest.h>

#include <set>
#include <type_traits>

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
