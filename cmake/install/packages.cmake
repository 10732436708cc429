# Debian packages, one for each library and one for those who build against them: cpack -G DEB in the build directory of
# the preset "package". scripts/check-packages tries them on a machine of their own.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR velPKI)
set(CPACK_PACKAGE_CONTACT "The velPKI developers <velpki@localhost>")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL velCrypto velPKI dev)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/lib)

set(velCrypto_package libvelcrypto${PROJECT_VERSION_MAJOR})
set(velPKI_package libvelpki${PROJECT_VERSION_MAJOR})
set(dev_package libvelpki-dev)
set(velPKI_depends "${velCrypto_package} (= ${PROJECT_VERSION})")
set(dev_depends "${velPKI_package} (= ${PROJECT_VERSION}), ${velPKI_depends}, libp11-kit-dev")

set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "velPKI, a public-key infrastructure library")
set(velCrypto_about "The crypto provider: digests, ciphers, signatures and key generation behind one set of plain
functions, over libcrypto and librhash; KCDSA, HAS-160, SEED and ARIA among them.")
set(velPKI_about "Reads, builds, signs and verifies X.509 certificates, revocation lists, requests, PKCS#7 and CMS messages,
key containers and OCSP; validates certification paths, reaches PKCS#11 tokens, and knows the scheme of Korean accredited
certificates.")
set(dev_about "Development files: headers, pkg-config files and CMake packages of the library and its crypto provider.")

foreach(component velCrypto velPKI dev)
  string(TOUPPER ${component} name)
  set(CPACK_DEBIAN_${name}_DESCRIPTION ${${component}_about})
  set(CPACK_DEBIAN_${name}_PACKAGE_NAME ${${component}_package})
  set(CPACK_DEBIAN_${name}_PACKAGE_DEPENDS ${${component}_depends})
  set(CPACK_DEBIAN_${name}_PACKAGE_SECTION libs)
  install(FILES LICENSE RENAME copyright DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${${component}_package}
          COMPONENT ${component})
endforeach()
foreach(name VELCRYPTO VELPKI)
  set(CPACK_DEBIAN_${name}_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_${name}_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/install/triggers)
endforeach()
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${dev_package} COMPONENT dev
        FILES_MATCHING PATTERN *.md PATTERN *.svg)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${dev_package} COMPONENT dev
        FILES_MATCHING PATTERN *.c PATTERN *.cpp PATTERN *.h PATTERN *.py)
install(DIRECTORY tests/consumer DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${dev_package}/tests COMPONENT dev
        PATTERN check EXCLUDE)
install(FILES README.md README.ko.md CONTRIBUTING.md SECURITY.md CHANGELOG.md
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${dev_package} COMPONENT dev)
include(CPack)
