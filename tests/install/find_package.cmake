# SPDX-License-Identifier: MIT
# cmake -Dqwport_DIR=... -P find_package.cmake
# Asks for the package as a configuration would whose target the -D variables describe. It must be refused.
cmake_policy(VERSION 3.25)
find_package(qwport REQUIRED CONFIG)
