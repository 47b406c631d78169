#!/bin/sh
# Signs Windows programs with osslsigncode and verifies the result.
#
#   sign.sh --pkcs12 FILE [OPTION...] PROGRAM...
#   sign.sh --pkcs11-module LIBRARY --pkcs11-key ID --certificate FILE [OPTION...] PROGRAM...
#
#   --pkcs12 FILE           the key and its certificates in one file (.p12, .pfx)
#   --pkcs11-module LIBRARY the library of a token or of a key service
#   --pkcs11-key ID         its key, as a "pkcs11:" URI or an id that the library knows
#   --certificate FILE      the certificate of that key, and those between it and the root, in PEM
#   --password-file FILE    the password or PIN is the first line of this file; without this option
#                           it is the value of SIGN_PASSWORD. There is none on the command line:
#                           every user of the machine sees that.
#   --time-stamp-server URL asks this server (RFC 3161) for a time stamp, so that the signature
#                           outlives the certificate
#   --root FILE             the root certificates to verify with, the time stamp's included, in PEM;
#                           without this option those of this machine
#   --check                 looks at the options only; takes no programs
#
# Either all programs are signed and verified, or none is changed. Exit codes: 0; 1 when signing or
# verifying fails; 2 for wrong options.
set -eu

fail() {
    code=$1
    shift
    echo "sign.sh: $*" >&2
    exit "$code"
}

pkcs12="" module="" key="" certificate="" password_file="" server="" root="" check=""
while [ $# -gt 0 ]; do
    case $1 in
    --check)
        check=yes
        shift
        continue
        ;;
    --pkcs12 | --pkcs11-module | --pkcs11-key | --certificate | --password-file | \
        --time-stamp-server | --root)
        [ $# -ge 2 ] || fail 2 "$1 needs a value"
        ;;
    --*) fail 2 "unknown option $1" ;;
    *) break ;;
    esac
    case $1 in
    --pkcs12) pkcs12=$2 ;;
    --pkcs11-module) module=$2 ;;
    --pkcs11-key) key=$2 ;;
    --certificate) certificate=$2 ;;
    --password-file) password_file=$2 ;;
    --time-stamp-server) server=$2 ;;
    --root) root=$2 ;;
    esac
    shift 2
done

# need FILE WHAT
need() {
    { [ -f "$1" ] && [ -r "$1" ]; } || fail 2 "no such file: $1 ($2)"
}

check_options() {
    if [ -n "$pkcs12" ]; then
        [ -z "$module$key$certificate" ] || fail 2 "--pkcs12 does not go with a token's options"
        need "$pkcs12" "the certificate"
    else
        [ -n "$module" ] || fail 2 "give a certificate: --pkcs12 or --pkcs11-module"
        [ -n "$key" ] || fail 2 "--pkcs11-module needs --pkcs11-key"
        [ -n "$certificate" ] || fail 2 "--pkcs11-module needs --certificate"
        need "$module" "the token's library"
        need "$certificate" "the certificate"
    fi
    [ -z "$password_file" ] || need "$password_file" "the password"
    [ -n "$password_file" ] || [ -n "${SIGN_PASSWORD+set}" ] ||
        fail 2 "no password: give --password-file or set SIGN_PASSWORD"
    [ -z "$root" ] || need "$root" "the root certificates"
    command -v osslsigncode >/dev/null ||
        fail 2 "osslsigncode is missing: apt-get install osslsigncode"
    [ -z "$module" ] || find_engine
}

# The library through which OpenSSL reaches tokens.
find_engine() {
    folder=$(dirname "$(find /usr/lib -path '*/engines-3/pkcs11.so' -print -quit 2>/dev/null)")
    engine=$folder/pkcs11.so
    [ -f "$engine" ] || fail 2 "OpenSSL's token engine is missing: apt-get install libengine-pkcs11-openssl"
}

# sign_to PROGRAM SIGNED
sign_to() {
    program=$1
    signed=$2
    if [ -n "$pkcs12" ]; then
        set -- -pkcs12 "$pkcs12"
    else
        set -- -pkcs11engine "$engine" -pkcs11module "$module" -key "$key" -certs "$certificate"
    fi
    [ -z "$server" ] || set -- "$@" -ts "$server"
    # By a pipe: no file has the password, and nothing can leave one behind.
    printf %s "$password" |
        osslsigncode sign "$@" -readpass /dev/stdin -h sha256 -in "$program" -out "$signed" \
            >"$work/log" 2>&1 && return
    ! grep -q 'timestamping failed' "$work/log" || fail_without_time_stamp "$(reason)"
    fail 1 "cannot sign $program: $(reason)"
}

# verify_as PROGRAM SIGNED
verify_as() {
    program=$1
    signed=$2
    set --
    [ -z "$root" ] || set -- -CAfile "$root" -TSA-CAfile "$root"
    osslsigncode verify "$@" -in "$signed" >"$work/log" 2>&1 ||
        fail 1 "the signature of $program cannot be verified with the root certificates of ${root:-this machine}: $(reason)"
    # A server that gives no time stamp must not go unnoticed.
    [ -z "$server" ] || ! grep -q 'Timestamp is not available' "$work/log" ||
        fail_without_time_stamp "the signature has none"
}

fail_without_time_stamp() { fail 1 "$program got no time stamp from $server: $*"; }

# What the tool says of its failure, in one line. Its last line is no more than "Failed", and its
# versions have different words for the same.
reason() {
    grep -oE '(Failed to|Error:|failure:) .*' "$work/log" | head -n 1 | sed 's/^failure: //' | grep . ||
        grep -vE '^(Failed|Connecting to .*|)$' "$work/log" | head -n 1 | grep . ||
        echo "osslsigncode does not say why"
}

check_options
if [ -n "$check" ]; then
    [ $# = 0 ] || fail 2 "--check takes no programs"
    exit 0
fi
[ $# -gt 0 ] || fail 2 "no program to sign"
for program; do need "$program" "the program"; done

if [ -n "$password_file" ]; then
    password=$(head -n 1 "$password_file" | tr -d '\r')
else
    password=$SIGN_PASSWORD
fi
unset SIGN_PASSWORD

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
trap 'exit 1' HUP INT TERM

number=0
for program; do
    number=$((number + 1))
    sign_to "$program" "$work/$number"
    verify_as "$program" "$work/$number"
done
trap '' HUP INT TERM # all or none
number=0
for program; do
    number=$((number + 1))
    cat "$work/$number" >"$program" # keeps its permissions
    echo "$program: signed and verified"
done
