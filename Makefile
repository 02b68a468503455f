# SPDX-License-Identifier: Apache-2.0
# The project's commands. Each installs what it lacks, configures its CMake preset and builds.

.DEFAULT_GOAL := help
.PHONY: help build demo inspect-demo test check bench fuzz coverage mutate lint docs docs-check package abi \
  format stats clean test-asan test-tsan device-like aarch64 report-check bench-build bench-once \
  abi-library abi-check package-check

FUZZ_SECONDS ?= 60
MUTANTS ?= 300
JOBS ?= $(shell nproc)
CTEST = ctest -j$(JOBS) --preset
DEMO = build/release/examples/fp_service/fp_service --device-root build/demo/device

# Configures preset $(1) and builds $(2), or everything. $(3) goes to cmake. A terminal sees ninja's
# progress, a log the number of steps.
define build
	@mkdir -p build
	@cmake --preset $(1) $(3) >build/$(1).configure.log 2>&1 || { cat build/$(1).configure.log; exit 1; }
	@build="cmake --build --preset $(1) -j$(JOBS) $(addprefix --target ,$(2))"; \
	if [ -t 1 ]; then $$build; else $$build | awk '$(count_steps)'; fi
endef
count_steps = /^\[[0-9]+\/[0-9]+\]/ {split($$1, step, /[\/\]]/); if (!steps++) {print "building, " step[2] " steps"; fflush()} next} \
  !/^ninja: (no work|Entering)/

SHELL := /bin/bash
.SHELLFLAGS := -o pipefail -c

help:  ## this list
	@awk -F ':.*## ' '/^[a-z-]+:.*## /{printf "  make %-12s %s\n", $$1, $$2}' $(MAKEFILE_LIST)

build:  ## build library, demo and tests
	@scripts/setup build test
	$(call build,release)
	@ln -sf build/release/compile_commands.json .

demo:  ## run a fingerprint service through a day on a simulated device
	@scripts/setup build test
	$(call build,release,fp_service)
	$(DEMO) --scenario examples/fp_service/scenarios/day.jsonl

inspect-demo: build  ## a week on a good and a bad device, and what fp_inspect prints about their dumps
	@tools/fp_inspect/demo/run build/release

test: build  ## build and run all tests
	$(CTEST) release

check: build  ## run the long checks too: kills during saves, long random runs, some mutants
	$(CTEST) long -V
	@$(MAKE) --no-print-directory mutate MUTANTS=30

# The lanes of .ci/run. Sanitizers take a share of the long random runs.
test-asan test-tsan: test-%:
	@scripts/setup build test clang
	$(call build,$*)
	$(CTEST) $*

# Compiles the library with the device's compiler and standard library, and runs the golden texts.
device-like:
	@scripts/setup build clang
	$(call build,device-like)
	scripts/check_golden build/device-like/tests/golden/print_golden

# Compiles the library for the device's processor, and runs the golden texts there.
aarch64:
	@scripts/setup build cross
	$(call build,aarch64)
	scripts/check_golden "qemu-aarch64-static build/aarch64/tests/golden/print_golden"

# Adds the benchmarks to the build of the tests, to reuse its objects.
bench-build:
	@scripts/setup build test bench
	$(call build,release,,-DFP_UTILS_BUILD_BENCH=ON)

# Each benchmark once, to see that it runs.
bench-once: bench-build
	build/release/bench/fp_bench --benchmark_color=false --benchmark_min_time=0 \
	  --benchmark_repetitions=1 >build/bench-once.log || { tail -n 20 build/bench-once.log; exit 1; }

bench:  ## measure against the plain alternatives and print the ratios
	@scripts/setup build bench
	$(call build,bench,fp_bench)
	build/bench/bench/fp_bench --benchmark_color=false

fuzz:  ## run every fuzz target for FUZZ_SECONDS (60)
	@scripts/setup build test clang
	$(call build,asan,fuzzers)
	scripts/fuzz build/asan $(FUZZ_SECONDS)

coverage:  ## lines and branches of include/ and src/ that the tests reach
	@scripts/setup build test coverage
	$(call build,coverage)
	$(CTEST) coverage | tail -n 3
	scripts/coverage build/coverage

mutate:  ## run the tests on MUTANTS (300) small changes of the library; SEED picks which
	@scripts/setup build test clang mutate
	scripts/mutate/mutate --count $(MUTANTS) $(addprefix --seed ,$(SEED)) --jobs $(JOBS)

lint: build  ## format, headers, includes, source lists, exported symbols, clang-tidy
	@scripts/setup lint clang
	scripts/check_format
	scripts/check_includes
	scripts/check_language
	scripts/check_sources
	scripts/check_headers
	scripts/check_symbols build/release/src/libfp_utils.so
	scripts/check_tidy build/release

docs:  ## the API reference, below build/docs/html
	@scripts/setup docs
	@mkdir -p build
	doxygen docs/Doxyfile

docs-check: build  ## run the commands of the pages, and check their links
	@scripts/setup lint
	scripts/docs_check

report-check: build  ## open pages of fp_inspect in a headless browser, and look for what is wrong
	@scripts/setup build test browser
	timeout 120 scripts/check_report build/release

package: build  ## Debian packages of the library, of the tools and of the simulated phone
	@scripts/setup package
	cd build/release && cpack -G DEB

package-check: package
	scripts/check_package build/release

# The interface depends only on the library, so its tests are not built.
abi-library:
	@scripts/setup build test abi
	$(call build,debug,fp_utils,-DFP_UTILS_BUILD_TESTS=OFF)

abi: abi-library  ## make the current exported interface the baseline
	scripts/check_abi build/debug/src/libfp_utils.so --update

abi-check: abi-library
	scripts/check_abi build/debug/src/libfp_utils.so

format:  ## format all sources in place
	@scripts/setup lint
	scripts/check_format --fix

stats:  ## lines of code by part of the tree, and the share of test code
	@scripts/stats

clean:  ## remove everything that was built, the demo's device included
	rm -rf build
