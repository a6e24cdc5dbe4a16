#include "platform/win32/processes.h"

#include <windows.h>

#include <exdisp.h>
#include <servprov.h>
#include <shldisp.h>
#include <shlguid.h>
#include <shlobj.h>

#include "platform/win32/com.h"

// The desktop's part of the processes port: a program that the running shell starts has the shell's token.

namespace win32 {

namespace {

/// IShellBrowser of the desktop's window.
HRESULT find_browser(ComOwner<IShellBrowser>& out) {
  ComOwner<IShellWindows> windows;
  HRESULT result = CoCreateInstance(CLSID_ShellWindows, nullptr, CLSCTX_ALL, IID_IShellWindows, windows.receive_any());
  if (FAILED(result)) return result;
  VARIANT desktop{};
  desktop.vt = VT_I4;
  desktop.lVal = CSIDL_DESKTOP;
  VARIANT no_root{};
  LONG window = 0;
  ComOwner<IDispatch> found;
  result = windows->FindWindowSW(&desktop, &no_root, SWC_DESKTOP, &window, SWFO_NEEDDISPATCH, found.receive());
  if (FAILED(result)) return result;
  if (!found) return E_FAIL;
  ComOwner<IServiceProvider> provider;
  result = found->QueryInterface(IID_IServiceProvider, provider.receive_any());
  if (FAILED(result)) return result;
  return provider->QueryService(SID_STopLevelBrowser, IID_IShellBrowser, out.receive_any());
}

/// IShellDispatch2 of the shell that shows `view`.
HRESULT dispatch_of(IShellView& view, ComOwner<IShellDispatch2>& out) {
  ComOwner<IDispatch> background;
  HRESULT result = view.GetItemObject(SVGIO_BACKGROUND, IID_IDispatch, background.receive_any());
  if (FAILED(result)) return result;
  ComOwner<IShellFolderViewDual> folder_view;
  result = background->QueryInterface(IID_IShellFolderViewDual, folder_view.receive_any());
  if (FAILED(result)) return result;
  ComOwner<IDispatch> application;
  result = folder_view->get_Application(application.receive());
  if (FAILED(result)) return result;
  return application->QueryInterface(IID_IShellDispatch2, out.receive_any());
}

VARIANT text_argument(const Bstr& text) {
  VARIANT argument{};
  argument.vt = VT_BSTR;
  argument.bstrVal = text.get();
  return argument;
}

}  // namespace

ports::Result Processes::find_desktop(ports::DesktopShell& out) {
  ComOwner<IShellBrowser> browser;
  HRESULT result = find_browser(browser);
  if (FAILED(result)) return result;
  ComOwner<IShellView> view;
  result = browser->QueryActiveShellView(view.receive());
  if (FAILED(result)) return result;
  ComOwner<IShellDispatch2> dispatch;
  result = dispatch_of(*view.get(), dispatch);
  if (FAILED(result)) return result;
  out = static_cast<ports::DesktopShell>(reinterpret_cast<std::uintptr_t>(dispatch.detach()));
  return result;
}

void Processes::release_desktop(ports::DesktopShell desktop) {
  reinterpret_cast<IShellDispatch2*>(desktop)->Release();
}

ports::Result Processes::execute_on_desktop(ports::DesktopShell desktop, const wchar_t* file, const wchar_t* arguments,
                                            const wchar_t* directory, const wchar_t* operation) {
  const Bstr file_text(file), arguments_text(arguments), directory_text(directory), operation_text(operation);
  VARIANT show{};
  show.vt = VT_I4;
  show.lVal = SW_SHOWNORMAL;
  return reinterpret_cast<IShellDispatch2*>(desktop)->ShellExecute(file_text.get(), text_argument(arguments_text),
                                                                   text_argument(directory_text),
                                                                   text_argument(operation_text), show);
}

}  // namespace win32
