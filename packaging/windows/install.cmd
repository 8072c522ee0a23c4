@echo off
rem Registers the add-in in the folder of this file, for you or, with /allusers as an administrator, for all users.
setlocal
set "words=/n /i:user"
if /i "%~1"=="/allusers" set "words="
set "native=x64"
if /i "%PROCESSOR_ARCHITECTURE%"=="x86" if not defined PROCESSOR_ARCHITEW6432 set "native=x86"
set "system=%SystemRoot%\System32"
if defined PROCESSOR_ARCHITEW6432 set "system=%SystemRoot%\Sysnative"

"%system%\regsvr32.exe" /s %words% "%~dp0%native%\OrmFuncQel4.dll"
if errorlevel 1 goto failed
if %native%==x64 if exist "%SystemRoot%\SysWOW64\regsvr32.exe" "%SystemRoot%\SysWOW64\regsvr32.exe" /s %words% "%~dp0x86\OrmFuncQel4.dll"
if defined words echo Registered. Start Excel. If it was open, close it and run this file again.
if not defined words echo Registered. In Excel, each user chooses OrmFunctionQel4.OrmQelFunction: File, Options, Add-ins, Go, Automation.
echo This folder must stay where it is; uninstall.cmd removes the registration.
exit /b 0

:failed
echo Windows did not take the registration. 1>&2
exit /b 1
