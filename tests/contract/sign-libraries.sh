#!/bin/bash
# sign-libraries.sh FOLDER LIBRARY PROGRAM: makes FOLDER anew with a test authority's certificate, LIBRARY in every state
# that a signature can be in, and PROGRAM as signed by the first signer. The keys are gone at the end.
# Certificates are signed with SHA-1: of others Wine does not check the chain.
set -euo pipefail
out=$1 library=$2 program=$3
rm -rf "$out"
mkdir -p "$out"
keys=$(mktemp -d)
trap 'rm -rf "$keys"' EXIT
cd "$keys"

cat >ca.cnf <<'END'
[ca]
default_ca = test
[test]
database = index
serial = serial
new_certs_dir = .
policy = name
default_md = sha1
unique_subject = no
x509_extensions = signer
[name]
commonName = supplied
[signer]
basicConstraints = CA:FALSE
extendedKeyUsage = codeSigning
END
: >index
# The leading byte 0 that this number needs in a certificate is part of what is shown.
echo 9A01 >serial

authority() {  # NAME SUBJECT
  openssl req -x509 -newkey rsa:2048 -nodes -sha1 -days 2 -subj "/CN=$2" -keyout "$1.key" -out "$1.pem"
}
signer() {  # NAME SUBJECT AUTHORITY START END, each of both as YYYYMMDDhhmmssZ
  openssl req -newkey rsa:2048 -nodes -subj "/CN=$2" -keyout "$1.key" -out "$1.csr"
  openssl ca -batch -notext -config ca.cnf -cert "$3.pem" -keyfile "$3.key" -in "$1.csr" -out "$1.pem" \
    -startdate "$4" -enddate "$5"
}
sign() {  # SIGNER AUTHORITY IN OUT
  osslsigncode sign -certs "$1.pem" -key "$1.key" -ac "$2.pem" -h sha256 -in "$3" -out "$out/$4"
}

{
  yesterday=$(date -u -d yesterday +%Y%m%d%H%M%SZ) tomorrow=$(date -u -d tomorrow +%Y%m%d%H%M%SZ)
  authority known "Ky Test Authority"
  authority unknown "Ky Test Authority"
  signer own "Ky Test Signer One" known "$yesterday" "$tomorrow"
  signer other "Ky Test Signer Two" known "$yesterday" "$tomorrow"
  signer expired "Ky Test Signer One" known 20200101000000Z 20210101000000Z
  signer stranger "Ky Test Signer One" unknown "$yesterday" "$tomorrow"
  for name in own other expired; do sign $name known "$library" $name.dll; done
  sign stranger unknown "$library" stranger.dll
  sign own known "$program" own.exe
} >log 2>&1 || {
  cat log >&2
  exit 1
}
cp "$library" "$out/none.dll"
cp "$program" "$out/none.exe"
# Of the text that every program and library begins with, nothing runs.
sed 's/This program cannot be run in DOS mode/THIS program cannot be run in DOS mode/' "$out/own.dll" >"$out/tampered.dll"
! cmp -s "$out/own.dll" "$out/tampered.dll"
openssl x509 -in known.pem -outform DER -out "$out/authority.der"
