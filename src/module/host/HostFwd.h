// Forward declarations of every interface of the host contract.
#pragma once

class IBaseInterface;
class IBaseEvent;
class Variant;

// offered by the module
class IQXParmira;

// listeners the module implements
class IMessage_LanguageChanged;
class IMessage_MDIActive;
class IMessage_ModuleEvent;
class IMessage_ModuleUploadEvent;
class IMessage_ModulePropertyUpdateEvent;
class IRefreshQueryEvent;

// services reached through the query callback
class IHostMessageBus;
class IHostModuleManager;
class IHostProjectRoot;
class IHostUiService;
class IHostTabManager;
class IHostVarUtil;
class IHostDeviceHelper;
class IHostProductDb;
class IHostRefreshService;
class IHostTransferService;
class IHostAccessService;
class IHostParamRecordFactory;
class IHostVarPicker;
class IHostHelpService;

// objects made by IHostModuleManager::CreateInstance
class IHostWorkerThread;
class IParamFile;
class IMemoryStream;
class IHostProgressBox;

// another plug-in's interface
class IOscilloscopePanel;

// the host's object model
class IHostProject;
class IHostWorkspace;
class IHostModuleList;
class IHostDeviceModule;
class IHostProductInfo;
class IHostProductRecord;
class IHostCommState;
class IVarDatabase;
class IVarStore;
class IParamFileTable;
class IVarObjEx;
class IVarAttr;
class IValueInfo;
class IValueInfoList;
class IValueInfoEntry;
class IVarCatalog;
class IGroupSet;
class IGroupNode;
class IGroupCategory;
class IHostAxis;
class IHostAxisList;
class IConnectorTable;
class IConnectorGroup;
class IFunctionTable;
class IFunctionEntry;
class IPerUnitTable;
class IPerUnitBase;
class IPerUnitEntry;
class IRWDataItem;
class IHostRefreshQuery;
class IHostRefreshItem;
class IHostWindowTranslator;
class IHostProgressStep;
