#!/bin/sh
# Signs copies of the launcher with a certificate made for this, and looks at what becomes of them.
#
#   sign_test.sh LAUNCHER WINE_PREFIX
#
# Prints a line for each check; the exit code is 0 when all hold.
set -eu

. "$(dirname "$0")/checks.sh"
launcher=$1
prefix=$2
cd "$work"

make_certificate() {
    openssl req -x509 -newkey rsa:2048 -nodes -keyout key.pem -out "$1.pem" -days 2 \
        -subj "/CN=$1" -addext extendedKeyUsage=codeSigning 2>/dev/null
    openssl pkcs12 -export -inkey key.pem -in "$1.pem" -out "$1.p12" -passout pass:secret
}

# refuses_to_sign CODE SENTENCE ARGUMENT...: and the program is as it was
refuses_to_sign() {
    code=$1
    sentence=$2
    shift 2
    refuses "$code" "$sentence" "$tools/sign.sh" "$@" && cmp "$launcher" first.exe
}

# The number of the media's volumes is the exit code of a launcher that starts nothing.
counts_volumes() {
    mkdir -p set/1/inst/win_b64/code/bin
    touch set/1/inst/win_b64/code/bin/ZEPInsAppliGUI.exe
    echo 3 >set/1/inst/volumes.txt
    for number in 1 2 3; do
        mkdir -p "set/$number"
        echo MTBDIR=SET >"set/$number/$number.txt"
    done
    cp "$1" set/1/setup.exe
    status=0
    ZEPAdmODTMultiVolumes=1 "$tools/wine-run.sh" "$prefix" set/1/setup.exe >output 2>&1 ||
        status=$?
    [ "$status" = 3 ] && return
    cat output
    return 1
}

# A signature begins at a multiple of 8 bytes: a program of another size, which only a debug build
# has, keeps the zeros in front of it, and a checksum that counts them.
is_restored() {
    osslsigncode remove-signature -in "$1" -out stripped.exe >/dev/null
    cp "$launcher" original.exe
    if [ $(($(wc -c <original.exe) % 8)) != 0 ]; then
        truncate -s %8 original.exe
        clear_checksum original.exe
        clear_checksum stripped.exe
    fi
    cmp original.exe stripped.exe
}
clear_checksum() {
    header=$(od -An -t u4 -j 60 -N 4 --endian=little "$1" | tr -d ' ')
    dd if=/dev/zero of="$1" bs=1 seek=$((header + 88)) count=4 conv=notrunc status=none
}

# Without osslsigncode, but with what sign.sh needs before it looks for that.
lacks_the_tool() {
    mkdir -p bin
    for program in sh dirname; do ln -sf "$(command -v "$program")" bin; done
    PATH=$work/bin refuses_without_path 2>output && return 1
    grep -q "osslsigncode is missing" output
}
refuses_without_path() { "$tools/sign.sh" --pkcs12 signer.p12 --password-file password first.exe; }

# Stopped by each signal while the tool waits: nothing is left, and the program is as it was.
leaves_nothing() {
    mkdir -p slow kept
    printf '%s\n' '#!/bin/sh' 'exec sleep 20' >slow/osslsigncode
    chmod +x slow/osslsigncode
    for signal in HUP INT TERM; do
        status=0
        PATH=$work/slow:$PATH TMPDIR=$work/kept timeout --preserve-status -s "$signal" 1 \
            "$tools/sign.sh" --pkcs12 signer.p12 --password-file password first.exe || status=$?
        [ "$status" != 0 ] && [ -z "$(ls kept)" ] && cmp "$launcher" first.exe || return 1
    done
}

make_certificate signer
make_certificate stranger
echo secret >password
echo wrong >wrong
cp "$launcher" first.exe
cp "$launcher" second.exe
usual="--pkcs12 signer.p12 --root signer.pem"

# shellcheck disable=SC2086  # several words
{
    check "no certificate" refuses_to_sign 2 "give a certificate" --password-file password first.exe
    check "no such certificate" refuses_to_sign 2 "no such file: none.p12" --pkcs12 none.p12 first.exe
    check "no such password file" refuses_to_sign 2 "no such file: none" $usual --password-file none \
        first.exe
    check "no password" refuses_to_sign 2 "no password" $usual first.exe
    check "an unknown option" refuses_to_sign 2 "unknown option --sign" --sign
    check "an option without its value" refuses_to_sign 2 "--pkcs12 needs a value" --pkcs12
    check "no program" refuses_to_sign 2 "no program" $usual --password-file password
    check "a token without its key" refuses_to_sign 2 "needs --pkcs11-key" --pkcs11-module first.exe x
    check "osslsigncode is missing" lacks_the_tool
    check "a wrong password" refuses_to_sign 1 "Wrong password" $usual --password-file wrong first.exe
    check "another root" refuses_to_sign 1 "cannot be verified" --pkcs12 signer.p12 --root stranger.pem \
        --password-file password first.exe
    # The second of two: the first stays as it is too.
    echo text >broken.exe
    check "no Windows program" refuses_to_sign 1 "cannot sign broken.exe" $usual --password-file password \
        first.exe broken.exe
    # A port at which nothing listens.
    check "no time stamp server" refuses_to_sign 1 "got no time stamp from http://127.0.0.1:9/: " $usual \
        --password-file password --time-stamp-server http://127.0.0.1:9/ first.exe
    check "an interrupted run leaves nothing" leaves_nothing
    check "two programs are signed" "$tools/sign.sh" $usual --password-file password \
        first.exe second.exe
    cp "$launcher" third.exe
    export SIGN_PASSWORD=secret
    check "a password from the environment" "$tools/sign.sh" $usual third.exe
}
check "the unsigned launcher runs" counts_volumes "$launcher"
check "the signed launcher runs" counts_volumes first.exe
check "without the signature the bytes are the old ones" is_restored first.exe
printf '\001' | dd of=second.exe bs=1 seek=5000 conv=notrunc status=none
verifies() { osslsigncode verify -CAfile signer.pem -in "$1" >output 2>&1; }
does_not_verify() { ! verifies "$1"; }
check "a signed file verifies" verifies first.exe
check "a changed file does not" does_not_verify second.exe

[ "$failures" = 0 ]
