// put_on_clipboard FILE.png: the picture goes to the clipboard as "PNG", as browsers and capture
// programs put pictures there. (The system's own key for the picture of a window gives a CF_DIB,
// which is a HGLOBAL; Wine's IDataObject of the clipboard, by which Qt asks, refuses it as one.)
#include <windows.h>

#include <shellapi.h>

static HGLOBAL BytesOf(const wchar_t* path) {
    const HANDLE file = CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, NULL, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, NULL);
    if (file == INVALID_HANDLE_VALUE) return NULL;
    const DWORD size = GetFileSize(file, NULL);
    const HGLOBAL bytes = GlobalAlloc(GMEM_MOVEABLE, size);
    DWORD read = 0;
    const BOOL is_read = ReadFile(file, GlobalLock(bytes), size, &read, NULL) && read == size;
    GlobalUnlock(bytes);
    CloseHandle(file);
    return is_read ? bytes : NULL;
}

int WINAPI wWinMain(HINSTANCE program, HINSTANCE before, wchar_t* line, int show) {
    (void)before, (void)line, (void)show;
    int count = 0;
    wchar_t** arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    const HGLOBAL picture = count == 2 ? BytesOf(arguments[1]) : NULL;
    // What is put there needs an owner.
    const HWND owner =
        CreateWindowW(L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, NULL, program, NULL);
    if (picture == NULL || !OpenClipboard(owner)) return 1;
    EmptyClipboard();
    const BOOL is_there = SetClipboardData(RegisterClipboardFormatW(L"PNG"), picture) != NULL;
    CloseClipboard();
    return is_there ? 0 : 1;
}
