// The table frame as a page's access box sees it (IAccessLevelFrame), defined where the
// frame's class is complete.
#pragma once

#include "groups/AccessSelector.h"

class CVarTable;

class CPageAccessFrame : public IAccessLevelFrame {
public:
    void SetFrame(CVarTable* frame) { m_pFrame = frame; }
    IHostDeviceModule* GetModule() override;
    void ApplyAccessLevel(IHostDeviceModule* module, int level) override;
    void ApplyAccessLevelToAll(int level) override;

private:
    CVarTable* m_pFrame = nullptr;
};
