// Gathers what the prompt shows, gets the answer, packs it, and keeps the record.
#include "credential_prompt.h"

#include <cstring>
#include <new>
#include <utility>

#include <objbase.h>

#include "credential_buffer.h"
#include "prompt_dialog.h"
#include "prompt_log.h"
#include "prompt_script.h"

namespace windows_gaps {
namespace {

/// What goes to the caller of the prompt.
struct PackedAnswer {
    LPVOID* buffer;
    ULONG* size;
};

DWORD HandOut(const Credentials& credentials, const PackedAnswer& answer) {
    const std::size_t size = PackedSize(credentials);
    void* packed = size == 0 ? nullptr : CoTaskMemAlloc(size);
    if (packed == nullptr) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
    Pack(credentials, packed);
    *answer.buffer = packed;
    *answer.size = static_cast<ULONG>(size);
    return ERROR_SUCCESS;
}

/// Hands out a buffer that unpacking refuses.
DWORD HandOutMalformed(const PackedAnswer& answer) {
    const DWORD error = HandOut({}, answer);
    if (error == ERROR_SUCCESS) {
        std::memset(*answer.buffer, 0, *answer.size);
    }
    return error;
}

DWORD AnswerByScript(const std::wstring& path, PromptDialogContent& content, const PackedAnswer& answer) {
    ScriptedAnswer scripted = NextScriptedAnswer(path);
    content.save = scripted.save.value_or(content.save);
    switch (scripted.kind) {
    case ScriptedAnswer::Kind::Given:
        return HandOut(scripted.credentials, answer);
    case ScriptedAnswer::Kind::Accepted:
        return HandOut(content.credentials, answer);
    case ScriptedAnswer::Kind::Malformed:
        return HandOutMalformed(answer);
    case ScriptedAnswer::Kind::Failed:
        return scripted.error;
    case ScriptedAnswer::Kind::Cancelled:
        break;
    }
    return ERROR_CANCELLED;
}

DWORD AnswerByPerson(PromptDialogContent& content, const PackedAnswer& answer) {
    const DWORD error = ShowPromptDialog(content);
    return error == ERROR_SUCCESS ? HandOut(content.credentials, answer) : error;
}

DWORD Prompt(PromptDialogContent& content, PromptRecord& record, BOOL* save, const PackedAnswer& answer) {
    const auto script = PromptScriptPath();
    record.error = script ? AnswerByScript(*script, content, answer) : AnswerByPerson(content, answer);
    if (record.error == ERROR_SUCCESS && content.offersSave) {
        *save = content.save ? TRUE : FALSE;
        record.saveAfter = content.save;
    }
    AppendToPromptLog(record);
    return record.error;
}

const wchar_t* TextOrNone(const wchar_t* text) {
    return text == nullptr ? L"" : text;
}

PromptDialogContent ContentOf(const CREDUI_INFOW* info, LPCVOID authBuffer, ULONG authBufferSize) {
    PromptDialogContent content;
    if (info != nullptr) {
        content.parent = info->hwndParent;
        content.caption = TextOrNone(info->pszCaptionText);
        content.message = TextOrNone(info->pszMessageText);
    }
    if (auto prefilled = Unpack(authBuffer, authBuffer == nullptr ? 0 : authBufferSize)) {
        content.credentials = std::move(*prefilled);
    }
    return content;
}

PromptRecord RecordOf(const PromptDialogContent& content) {
    PromptRecord record;
    record.caption = content.caption;
    record.message = content.message;
    record.hasParent = content.parent != nullptr;
    if (content.credentials.userName.Size() != 0) {
        record.prefilledUser = content.credentials.userName.View();
    }
    record.prefilledPassword = !content.credentials.password.View().empty();
    record.saveBefore = record.saveAfter = content.save;
    return record;
}

} // namespace

DWORD WINAPI PromptForCredentials(PCREDUI_INFOW info, DWORD authError, ULONG* authPackage, LPCVOID authBuffer,
                                  ULONG authBufferSize, LPVOID* answer, ULONG* answerSize, BOOL* save,
                                  DWORD flags) try {
    const bool offersSave = (flags & CREDUIWIN_CHECKBOX) != 0;
    if (answer == nullptr || answerSize == nullptr || (offersSave && save == nullptr) ||
        (info != nullptr && info->cbSize != sizeof(*info))) {
        return ERROR_INVALID_PARAMETER;
    }
    *answer = nullptr;
    *answerSize = 0;

    PromptDialogContent content = ContentOf(info, authBuffer, authBufferSize);
    content.offersSave = offersSave;
    content.save = offersSave && *save != FALSE;
    PromptRecord record = RecordOf(content);
    record.structSize = info == nullptr ? 0 : info->cbSize;
    record.flags = flags;
    record.authPackageIn = authPackage == nullptr ? 0 : *authPackage;
    record.authError = authError;
    return Prompt(content, record, save, {answer, answerSize});
} catch (const std::bad_alloc&) {
    return ERROR_NOT_ENOUGH_MEMORY;
}

} // namespace windows_gaps
