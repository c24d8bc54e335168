; The installer for one user, without administrator's rights. makensis gets VERSION, PROGRAMS (the
; built programs), SOUNDS, TEXTS (licence and manual) and OUTPUT.
; The programs are for x64, and so is what installs them.
Target amd64-unicode
!include MUI2.nsh
!include FileFunc.nsh
!include LogicLib.nsh

!define KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Coffrelune"
!define RUN "Software\Microsoft\Windows\CurrentVersion\Run"

Name "Coffrelune"
OutFile "${OUTPUT}"
RequestExecutionLevel user
InstallDir "$LOCALAPPDATA\Programs\Coffrelune"
InstallDirRegKey HKCU "Software\Coffrelune" "InstallDir"
SetCompressor /SOLID lzma
SetDateSave off
BrandingText "Coffrelune ${VERSION}"

!define MUI_ICON "coffrelune.ico"
!define MUI_UNICON "coffrelune.ico"
!insertmacro MUI_PAGE_LICENSE "${TEXTS}/LICENSE"
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!define MUI_FINISHPAGE_RUN "$INSTDIR\coffrelune.exe"
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_COMPONENTS
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "French"
!insertmacro MUI_LANGUAGE "English"

LangString InUse ${LANG_FRENCH} "Coffrelune est ouvert : fermez-le, puis recommencez."
LangString InUse ${LANG_ENGLISH} "Coffrelune is running: close it, then try again."
LangString Programs ${LANG_FRENCH} "Programmes"
LangString Programs ${LANG_ENGLISH} "Programs"
LangString Settings ${LANG_FRENCH} "Réglages et listes d'erreurs"
LangString Settings ${LANG_ENGLISH} "Settings and lists of errors"

VIProductVersion "${VERSION}.0.0"
VIAddVersionKey /LANG=${LANG_FRENCH} "ProductName" "Coffrelune"
VIAddVersionKey /LANG=${LANG_FRENCH} "FileDescription" "Installation de Coffrelune"
VIAddVersionKey /LANG=${LANG_FRENCH} "FileVersion" "${VERSION}"
VIAddVersionKey /LANG=${LANG_FRENCH} "LegalCopyright" "© 2026 Les développeurs de Coffrelune, licence MIT"

; A program that runs keeps its file from being written: half an installation would be left.
!macro refuseWhileRunning
  ${If} ${FileExists} "$INSTDIR\coffrelune.exe"
    ClearErrors
    FileOpen $0 "$INSTDIR\coffrelune.exe" a
    ${If} ${Errors}
      MessageBox MB_OK|MB_ICONEXCLAMATION "$(InUse)" /SD IDOK
      SetErrorLevel 3
      Abort
    ${EndIf}
    FileClose $0
  ${EndIf}
!macroend

Section "Coffrelune"
  !insertmacro refuseWhileRunning
  SetOutPath "$INSTDIR"
  File "${PROGRAMS}/coffrelune.exe"
  File "${PROGRAMS}/coffrelune-console.exe"
  File "/oname=LICENSE.txt" "${TEXTS}/LICENSE"
  File /r "${PROGRAMS}/aide"
  ; A sound of the user's own under the same name stays.
  SetOverwrite off
  File "${SOUNDS}/Ok.wav"
  File "${SOUNDS}/Erreur.wav"
  SetOverwrite on
  WriteUninstaller "$INSTDIR\desinstaller.exe"
  CreateShortcut "$SMPROGRAMS\Coffrelune.lnk" "$INSTDIR\coffrelune.exe"
  WriteRegStr HKCU "Software\Coffrelune" "InstallDir" "$INSTDIR"
  WriteRegStr HKCU "${KEY}" "DisplayName" "Coffrelune"
  WriteRegStr HKCU "${KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKCU "${KEY}" "DisplayIcon" "$INSTDIR\coffrelune.exe"
  WriteRegStr HKCU "${KEY}" "Publisher" "Les développeurs de Coffrelune"
  WriteRegStr HKCU "${KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKCU "${KEY}" "UninstallString" '"$INSTDIR\desinstaller.exe"'
  WriteRegStr HKCU "${KEY}" "QuietUninstallString" '"$INSTDIR\desinstaller.exe" /S'
  WriteRegDWORD HKCU "${KEY}" "NoModify" 1
  WriteRegDWORD HKCU "${KEY}" "NoRepair" 1
SectionEnd

Section "un.$(Programs)" unPrograms
  SectionIn RO
  !insertmacro refuseWhileRunning
  Delete "$INSTDIR\coffrelune.exe"
  Delete "$INSTDIR\coffrelune-console.exe"
  Delete "$INSTDIR\LICENSE.txt"
  Delete "$INSTDIR\aide\manuel.html"
  Delete "$INSTDIR\aide\captures\*.png"
  RMDir "$INSTDIR\aide\captures"
  RMDir "$INSTDIR\aide"
  Delete "$INSTDIR\Ok.wav"
  Delete "$INSTDIR\Erreur.wav"
  Delete "$INSTDIR\desinstaller.exe"
  Delete "$SMPROGRAMS\Coffrelune.lnk"
  ; The start at logon, when it is this program that it starts.
  ReadRegStr $0 HKCU "${RUN}" "Coffrelune"
  ${If} $0 == "$INSTDIR\coffrelune.exe"
    DeleteRegValue HKCU "${RUN}" "Coffrelune"
  ${EndIf}
  DeleteRegKey HKCU "${KEY}"
  DeleteRegKey HKCU "Software\Coffrelune"
SectionEnd

; Not ticked: who installs again finds everything in its place.
Section /o "un.$(Settings)" unSettings
  Delete "$INSTDIR\Coffrelune.ini"
  Delete "$INSTDIR\S_*.err"
  Delete "$INSTDIR\R_*.err"
  Delete "$INSTDIR\C_*.err"
SectionEnd

Section "un.-Directory"
  ; Only when it is empty: whatever else lies there is the user's.
  RMDir "$INSTDIR"
SectionEnd

; "/REGLAGES" ticks the settings of a removal that shows no window.
Function un.onInit
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/REGLAGES" $1
  ${IfNot} ${Errors}
    !insertmacro SelectSection ${unSettings}
  ${EndIf}
FunctionEnd
