# Top-level entry points. Each target installs missing build dependencies
# first, so a fresh Debian machine needs nothing else.
BUILD_DIR ?= build
JOBS ?= 2
CMAKE_FLAGS ?=

.PHONY: all deps configure build test demo examples clean python python-example

all: build

deps:
	@scripts/install-deps.sh
	@$(MAKE) --no-print-directory report-deps

# The charting library heron report inlines in its pages: the npm package
# pinned with its integrity hash in report/package-lock.json, installed under
# report/node_modules (again only when the lock file changes). Without npm or
# the registry heron still builds, and its reports are SVG only.
.PHONY: report-deps
report-deps:
	@if [ -f report/node_modules/.package-lock.json ] && \
	    [ ! report/package-lock.json -nt report/node_modules/.package-lock.json ]; then :; \
	elif command -v npm >/dev/null 2>&1; then \
	  (cd report && npm ci --no-audit --no-fund --loglevel=error) || \
	    echo "report/: npm ci failed; heron report will write SVG-only pages"; \
	else echo "npm not found; heron report will write SVG-only pages"; fi

configure: deps
	@if [ ! -f $(BUILD_DIR)/build.ninja ]; then \
	  cmake -S . -B $(BUILD_DIR) -G Ninja $(CMAKE_FLAGS); \
	fi

build: configure
	cmake --build $(BUILD_DIR) -j$(JOBS)

test: build
	ctest --test-dir $(BUILD_DIR) --output-on-failure -j$(JOBS)

# The 32-bit Arm (armhf) lane: cross build into build-arm/ with static
# executables, the whole test suite under qemu-arm, and byte identity of the
# designers' and heron's outputs between armhf and this machine.
.PHONY: test-arm
test-arm:
	@JOBS=$(JOBS) HOST_BUILD_DIR=$(CURDIR)/$(BUILD_DIR) scripts/test-arm.sh

HERON = $(BUILD_DIR)/bin/heron
EXAMPLE_ROUTE = examples/headphone_route.txtpb
EXAMPLE_MODEL = examples/listening_model.txtpb
# The postmix fields worth a first look: controls, where each region came
# from, and the designed coefficients.
DEMO_FIELDS = '^ *[0-9]+  (output_device|lyra_input_gain|bypass_hpeq|brio\.enable|brio\.thumpx\.speaker_size|mbhl\.(enable|dist_prev_enable)|[a-z_]+\.uuid|[a-z_]+\.sample_rate|hpf\.|aeq\.bank\[0\]\.iir_order|thumpx\.coeffs|mbhl_coef\.low|dist_prev\[0\]\.notch_band_(count|attenuation))'

# The main job: populate the engine's records from the shipped example.
demo: build
	@mkdir -p $(BUILD_DIR)/demo
	$(HERON) populate $(EXAMPLE_ROUTE) --model $(EXAMPLE_MODEL) \
	  --premix-out $(BUILD_DIR)/demo/premix.bin --postmix-out $(BUILD_DIR)/demo/postmix.bin
	@echo
	$(HERON) dump $(BUILD_DIR)/demo/premix.bin
	@echo
	@echo "$(HERON) dump $(BUILD_DIR)/demo/postmix.bin  (key fields)"
	@$(HERON) dump $(BUILD_DIR)/demo/postmix.bin | grep -E $(DEMO_FIELDS)

# The Python package quillheron, assembled in $(BUILD_DIR)/python (put that
# directory on PYTHONPATH, or install with pip: see python/setup.py).
python: configure
	cmake --build $(BUILD_DIR) -j$(JOBS) --target qh_python

# The plot of every filter of the example route (docs/python_example.png).
python-example: python
	PYTHONPATH=$(BUILD_DIR)/python /usr/bin/python3 python/examples/plot_route.py docs/python_example.png

# Regenerates the shipped examples with the project's own designers.
examples: build
	$(BUILD_DIR)/bin/make_examples examples

clean:
	rm -rf $(BUILD_DIR)

# Benchmarks (not part of test or CI): Release build in build-bench/.
#   make bench        timings and allocations per call; JSON in build/bench.json
#   make bench-ir     instructions per call under callgrind; build/bench_ir.tsv
#   make bench-check  budgets (instruction ratios, zero allocations, designer
#                     times); fails when one is not met
BENCH_DIR ?= build-bench
BENCH_BIN = $(BENCH_DIR)/bin/qh_bench
BENCH_FLAGS ?=

.PHONY: bench bench-build bench-ir bench-check

bench-build:
	@scripts/install-deps.sh libbenchmark-dev valgrind
	@if [ ! -f $(BENCH_DIR)/build.ninja ]; then \
	  cmake -S . -B $(BENCH_DIR) -G Ninja -DCMAKE_BUILD_TYPE=Release \
	    -DQH_BUILD_BENCH=ON -DQH_BUILD_TESTS=OFF -DQH_BUILD_TOOLS=OFF -DQH_BUILD_PYTHON=OFF; \
	fi
	cmake --build $(BENCH_DIR) -j$(JOBS) --target qh_bench

bench: bench-build
	@mkdir -p build
	$(BENCH_BIN) --benchmark_out=build/bench.json --benchmark_out_format=json $(BENCH_FLAGS)

bench-ir: bench-build
	@rm -rf $(BENCH_DIR)/callgrind && mkdir -p $(BENCH_DIR)/callgrind build
	valgrind --tool=callgrind --instr-atstart=no --callgrind-out-file=$(BENCH_DIR)/callgrind/out \
	  $(BENCH_BIN) --ir > $(BENCH_DIR)/callgrind/driver.log 2>&1 || { cat $(BENCH_DIR)/callgrind/driver.log; exit 1; }
	$(BENCH_BIN) --ir-report $(BENCH_DIR)/callgrind --ir-out build/bench_ir.tsv

bench-check: bench-ir
	$(BENCH_BIN) --check --ir-in build/bench_ir.tsv

# Sanitizer lane: the library, the tool and the whole test suite built with
# AddressSanitizer and UBSan in build-san/ and run there; then the threading
# test alone built with ThreadSanitizer in build-tsan/ and run. Unoptimised
# builds: they compile in less than half the time and the suite stays fast.
SAN_DIR ?= build-san
TSAN_DIR ?= build-tsan
SAN_FLAGS = -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer
TSAN_FLAGS = -fsanitize=thread -fno-omit-frame-pointer
SAN_ENV = ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1

.PHONY: test-san fuzz

test-san: deps
	@if [ ! -f $(SAN_DIR)/build.ninja ]; then \
	  cmake -S . -B $(SAN_DIR) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DQH_BUILD_PYTHON=OFF \
	    "-DCMAKE_C_FLAGS=$(SAN_FLAGS)" "-DCMAKE_CXX_FLAGS=$(SAN_FLAGS)"; \
	fi
	cmake --build $(SAN_DIR) -j$(JOBS)
	$(SAN_ENV) ctest --test-dir $(SAN_DIR) --output-on-failure -j$(JOBS)
	@if [ ! -f $(TSAN_DIR)/build.ninja ]; then \
	  cmake -S . -B $(TSAN_DIR) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DQH_BUILD_TOOLS=OFF -DQH_BUILD_PYTHON=OFF \
	    "-DCMAKE_C_FLAGS=$(TSAN_FLAGS)" "-DCMAKE_CXX_FLAGS=$(TSAN_FLAGS)"; \
	fi
	cmake --build $(TSAN_DIR) -j$(JOBS) --target concurrency_test
	TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1 $(TSAN_DIR)/tests/concurrency_test

# Fuzzing: every harness of fuzz/ for FUZZ_SECONDS seconds, one after the
# other, with clang's libFuzzer, AddressSanitizer and UBSan, in build-fuzz/.
# New corpus entries go to build-fuzz/corpus/<harness>, findings to
# build-fuzz/artifacts/<harness>/; any finding fails the target. A run never
# writes into fuzz/. See fuzz/README.md for long campaigns and replays.
FUZZ_DIR ?= build-fuzz
FUZZ_SECONDS ?= 60
FUZZ_HARNESSES = route records designers
FUZZ_CFLAGS = -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined
FUZZ_ARGS = -timeout=300 -rss_limit_mb=2560 -print_final_stats=1

fuzz:
	@scripts/install-deps.sh clang libclang-rt-14-dev
	@if [ ! -f $(FUZZ_DIR)/build.ninja ]; then \
	  CC=clang CXX=clang++ cmake -S . -B $(FUZZ_DIR) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	    -DQH_BUILD_FUZZ=ON -DQH_BUILD_TESTS=OFF -DQH_BUILD_TOOLS=OFF -DQH_BUILD_PYTHON=OFF \
	    "-DCMAKE_C_FLAGS=$(FUZZ_CFLAGS)" "-DCMAKE_CXX_FLAGS=$(FUZZ_CFLAGS)"; \
	fi
	cmake --build $(FUZZ_DIR) -j$(JOBS) $(addprefix --target fuzz_,$(FUZZ_HARNESSES))
	@for h in $(FUZZ_HARNESSES); do \
	  mkdir -p $(FUZZ_DIR)/corpus/$$h $(FUZZ_DIR)/artifacts/$$h; \
	  seeds="fuzz/corpus/$$h"; \
	  if [ -d fuzz/regressions/$$h ]; then seeds="$$seeds fuzz/regressions/$$h"; fi; \
	  dict=""; if [ -f fuzz/$$h.dict ]; then dict="-dict=fuzz/$$h.dict"; fi; \
	  echo "== fuzz_$$h for $(FUZZ_SECONDS) s"; \
	  $(FUZZ_DIR)/fuzz/fuzz_$$h $(FUZZ_ARGS) $$dict -max_total_time=$(FUZZ_SECONDS) \
	    -artifact_prefix=$(FUZZ_DIR)/artifacts/$$h/ $(FUZZ_DIR)/corpus/$$h $$seeds \
	    > $(FUZZ_DIR)/artifacts/$$h.log 2>&1 \
	    || { tail -n 60 $(FUZZ_DIR)/artifacts/$$h.log; echo "fuzz_$$h: finding, see $(FUZZ_DIR)/artifacts/$$h/"; exit 1; }; \
	  grep -E '^(Done|stat::number_of_executed_units|stat::average_exec_per_sec)' $(FUZZ_DIR)/artifacts/$$h.log; \
	  grep -E '(pulse|DONE|INITED) +cov:' $(FUZZ_DIR)/artifacts/$$h.log | tail -n 1; \
	done
