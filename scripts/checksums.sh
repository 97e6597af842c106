# Sourced by the scripts that make packages.

# write_checksums: the checksums of everything in dist/, for "sha256sum --check".
write_checksums() {
  (cd "$root/dist" && find . -maxdepth 1 -type f ! -name SHA256SUMS -printf '%f\n' | sort | xargs sha256sum >SHA256SUMS)
}
