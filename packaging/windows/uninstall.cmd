@echo off
rem Removes what install.cmd registered, with the same words. The folder can be deleted afterwards.
setlocal
set "words=/n /i:user"
if /i "%~1"=="/allusers" set "words="
set "native=x64"
if /i "%PROCESSOR_ARCHITECTURE%"=="x86" if not defined PROCESSOR_ARCHITEW6432 set "native=x86"
set "system=%SystemRoot%\System32"
if defined PROCESSOR_ARCHITEW6432 set "system=%SystemRoot%\Sysnative"

"%system%\regsvr32.exe" /s /u %words% "%~dp0%native%\OrmFuncQel4.dll"
if errorlevel 1 goto failed
if %native%==x64 if exist "%SystemRoot%\SysWOW64\regsvr32.exe" "%SystemRoot%\SysWOW64\regsvr32.exe" /s /u %words% "%~dp0x86\OrmFuncQel4.dll"
echo Removed. You can delete this folder.
exit /b 0

:failed
echo Windows did not remove the registration. 1>&2
exit /b 1
