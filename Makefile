# Top-level entry points. Each target installs missing build dependencies
# first, so a fresh Debian machine needs nothing else.
BUILD_DIR ?= build
JOBS ?= 2
CMAKE_FLAGS ?=

.PHONY: all deps configure build test demo examples clean

all: build

deps:
	@scripts/install-deps.sh

configure: deps
	@if [ ! -f $(BUILD_DIR)/build.ninja ]; then \
	  cmake -S . -B $(BUILD_DIR) -G Ninja $(CMAKE_FLAGS); \
	fi

build: configure
	cmake --build $(BUILD_DIR) -j$(JOBS)

test: build
	ctest --test-dir $(BUILD_DIR) --output-on-failure -j$(JOBS)

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

# Regenerates the shipped examples with the project's own designers.
examples: build
	$(BUILD_DIR)/bin/make_examples examples

clean:
	rm -rf $(BUILD_DIR)
