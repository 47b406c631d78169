; An installer as a third party would make it. It writes what it was handed to the file named by the
; variable SAMPLE_REPORT, in UTF-16, and exits with the code in SAMPLE_EXIT.
Unicode true
Name "Sample"
OutFile "${OUTPUT}"
RequestExecutionLevel user
SilentInstall silent

!macro Report KIND TEXT
  FileWriteUTF16LE $0 "${KIND}=${TEXT}$\r$\n"
!macroend

!macro ReportVariable NAME
  ReadEnvStr $1 "${NAME}"
  !insertmacro Report "${NAME}" "$1"
!macroend

Section
  ReadEnvStr $1 "SAMPLE_REPORT"
  FileOpen $0 "$1" w
  !insertmacro Report "commandLine" "$CMDLINE"
  !insertmacro Report "module" "$EXEPATH"
  !insertmacro ReportVariable "ZEP_OS"
  !insertmacro ReportVariable "ZEPAdmInstCurrentMediaDir"
  !insertmacro ReportVariable "ZEPAdmInstOriginalMediaDir"
  !insertmacro ReportVariable "SAMPLE_VALUE"
  FileClose $0
  ReadEnvStr $1 "SAMPLE_EXIT"
  SetErrorLevel $1
SectionEnd
