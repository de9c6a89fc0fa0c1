#include "groups/Credentials.h"

#include "groups/Sha256.h"

#ifndef PARMIRA_FACTORY_CODE_NUMBER
#error "PARMIRA_FACTORY_CODE_NUMBER must come from the build"
#endif
#ifndef PARMIRA_ADMIN_SALT
#error "PARMIRA_ADMIN_SALT must come from the build"
#endif
#ifndef PARMIRA_ADMIN_HASH
#error "PARMIRA_ADMIN_HASH must come from the build"
#endif

namespace {

// Read through a volatile so that the compiler cannot fold the digits of the code into
// the binary as text (as it may do for a constant handed to a formatting routine).
volatile int s_factoryCode = PARMIRA_FACTORY_CODE_NUMBER;

// Compares two digests in a time that does not depend on where they differ.
bool SameDigest(const std::string& a, const char* b) {
    const std::string expected(b);
    if (a.size() != expected.size())
        return false;
    unsigned diff = 0;
    for (size_t i = 0; i < a.size(); ++i)
        diff |=
            unsigned(static_cast<unsigned char>(a[i]) ^ static_cast<unsigned char>(expected[i]));
    return diff == 0;
}

} // namespace

int GetFactoryAccessCode() {
    return s_factoryCode;
}

CString GetFactoryAccessCodeText() {
    CString text;
    text.Format("%04d", GetFactoryAccessCode());
    return text;
}

BOOL IsAccessPasswordValid(const CString& password) {
    if (password.IsEmpty())
        return FALSE;
    if (password.CompareNoCase(GetFactoryAccessCodeText()) == 0)
        return TRUE;
    CString lower = password;
    lower.MakeLower();
    const std::string salted = std::string(PARMIRA_ADMIN_SALT) + lower.str();
    return SameDigest(Sha256Hex(salted), PARMIRA_ADMIN_HASH) ? TRUE : FALSE;
}
