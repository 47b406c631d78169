# The same as set-swaprun.sh, where MinGW runs on Windows.
#
#   powershell -File set-swaprun.ps1 PROGRAM.exe
param([Parameter(Mandatory = $true)][string] $Program)
$ErrorActionPreference = 'Stop'

$bytes = [IO.File]::ReadAllBytes($Program)
$header = [BitConverter]::ToInt32($bytes, 60) # e_lfanew
if ([BitConverter]::ToInt32($bytes, $header) -ne 17744) { throw "$Program is no Windows program" }

# IMAGE_FILE_REMOVABLE_RUN_FROM_SWAP and IMAGE_FILE_NET_RUN_FROM_SWAP, in the upper byte.
$bytes[$header + 23] = $bytes[$header + 23] -bor 0x0C
# No checksum instead of a wrong one: only drivers need it.
88..91 | ForEach-Object { $bytes[$header + $_] = 0 }
[IO.File]::WriteAllBytes($Program, $bytes)
