// A stand-in for the simulator as a true Windows program; the contract of x11_simulator.cpp, as
// Windows sees it. Lines of its log (UTF-8) besides those of the other one:
//   command line=TEXT   the whole command line
//   show=N              how its window is to be shown (nCmdShow)
//   table=N             size in bytes of the table file whose path follows the "-"; or "none"
//   syscommand close    WM_SYSCOMMAND with SC_CLOSE has come
//   closed by request   WM_CLOSE has come
// The log's and the end file's paths are native ones of the system below Wine, or have a drive.
#include <windows.h>

#include <shellapi.h>
#include <stdio.h>
#include <wchar.h>

#define MAX_TEXT 8192

static wchar_t title[MAX_TEXT];
static const wchar_t* table_path = L"";
static ULONGLONG end_of_life, end_of_play;
static BOOL playing = TRUE;

// The value, with the drive on which Wine shows the root in front if it has none; empty: not set.
static void NativePathVariable(const wchar_t* name, wchar_t* path) {
    wcscpy(path, L"Z:");
    if (GetEnvironmentVariableW(name, path + 2, MAX_TEXT - 2) == 0) path[0] = 0;
    if (path[0] != 0 && path[2] != 0 && path[3] == L':') wmemmove(path, path + 2, MAX_TEXT - 2);
}

static DWORD NumberVariable(const wchar_t* name, DWORD fallback) {
    wchar_t text[32];
    return GetEnvironmentVariableW(name, text, 32) != 0 ? (DWORD)_wtoi(text) : fallback;
}

static void Log(const wchar_t* format, const wchar_t* text) {
    static wchar_t line[MAX_TEXT], path[MAX_TEXT];
    static char bytes[4 * MAX_TEXT];
    DWORD written;
    NativePathVariable(L"TAVOLO_SIMULATOR_LOG", path);
    _snwprintf(line, MAX_TEXT - 1, format, text);
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, line, -1, bytes, sizeof bytes - 1, NULL, NULL) - 1;
    bytes[size] = '\n';
    const HANDLE file = CreateFileW(path, FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                    NULL, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, NULL);
    WriteFile(file, bytes, (DWORD)size + 1, &written, NULL);
    CloseHandle(file);
}

static void LogArguments(int count, wchar_t** arguments, int show) {
    wchar_t format[32], folder[MAX_TEXT];
    Log(L"command line=%ls", GetCommandLineW());
    for (int i = 1; i < count; ++i) {
        _snwprintf(format, 31, L"argv[%d]=%%ls", i);
        Log(format, arguments[i]);
    }
    GetCurrentDirectoryW(MAX_TEXT, folder);
    Log(L"cwd=%ls", folder);
    _snwprintf(format, 31, L"%d", show);
    Log(L"show=%ls", format);
}

static void LogTable(void) {
    wchar_t size[32];
    const HANDLE file = CreateFileW(table_path, GENERIC_READ, FILE_SHARE_READ, NULL, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, NULL);
    if (file == INVALID_HANDLE_VALUE) {
        Log(L"table=%ls", L"none");
        return;
    }
    _snwprintf(size, 31, L"%lu", GetFileSize(file, NULL));
    Log(L"table=%ls", size);
    CloseHandle(file);
}

// The file name without its last four characters.
static void MakeTitle(void) {
    const wchar_t* name = wcsrchr(table_path, L'\\');
    name = name != NULL ? name + 1 : table_path;
    const int length = (int)wcslen(name) - 4;
    _snwprintf(title, MAX_TEXT - 1, L"Visual Pinball - [%.*ls%ls]", length > 0 ? length : 0, name,
               playing ? L"*" : L"");
}

static BOOL PlayHasEnded(void) {
    wchar_t end_file[MAX_TEXT];
    NativePathVariable(L"TAVOLO_SIMULATOR_END_FILE", end_file);
    if (end_file[0] == 0) return GetTickCount64() >= end_of_play;
    return GetFileAttributesW(end_file) != INVALID_FILE_ATTRIBUTES;
}

static void OnTimer(HWND window) {
    if (GetTickCount64() >= end_of_life) DestroyWindow(window);
    if (!playing || !PlayHasEnded()) return;
    playing = FALSE;
    MakeTitle();
    SetWindowTextW(window, title);
    Log(L"%ls", L"ended");
}

static LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM word, LPARAM longer) {
    switch (message) {
    case WM_TIMER:
        OnTimer(window);
        return 0;
    case WM_SYSCOMMAND:
        if ((word & 0xFFF0) == SC_CLOSE) Log(L"%ls", L"syscommand close");
        break;
    case WM_CLOSE:
        Log(L"%ls", L"closed by request");
        break;
    case WM_DESTROY:
        PostQuitMessage(0);
        return 0;
    }
    return DefWindowProcW(window, message, word, longer);
}

static void ShowWindowOfPlay(HINSTANCE program) {
    WNDCLASSW window_class = {0};
    window_class.lpfnWndProc = WindowProcedure;
    window_class.hInstance = program;
    window_class.hbrBackground = (HBRUSH)(COLOR_WINDOW + 1);
    window_class.lpszClassName = L"VPinball";
    RegisterClassW(&window_class);
    MakeTitle();
    const HWND window = CreateWindowW(L"VPinball", title, WS_OVERLAPPEDWINDOW, 60, 60, 320, 240,
                                      NULL, NULL, program, NULL);
    SetTimer(window, 1, 10, NULL);
    ShowWindow(window, SW_SHOWNORMAL);
    Log(L"%ls", L"shown");
}

int WINAPI wWinMain(HINSTANCE program, HINSTANCE before, wchar_t* line, int show) {
    int count = 0;
    MSG message;
    (void)before, (void)line;
    wchar_t** arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    end_of_life = GetTickCount64() + NumberVariable(L"TAVOLO_SIMULATOR_LIFETIME_MS", 60000);
    end_of_play = GetTickCount64() + NumberVariable(L"TAVOLO_SIMULATOR_PLAY_MS", 500);
    LogArguments(count, arguments, show);
    if (count < 3 || arguments[2][0] != L'-') return 2;
    table_path = arguments[2] + 1;
    LogTable();
    ShowWindowOfPlay(program);
    while (GetMessageW(&message, NULL, 0, 0) > 0)
        DispatchMessageW(&message);
    return 0;
}
