"""aceconv-hostcheck: what it says of hosts that break one promise each."""
import concurrent.futures
import os
import pathlib
import re
import subprocess
import unittest

HOSTCHECK, EXAMPLE, REFERENCE, BROKEN, PLUGIN = (os.environ["ACECONV_" + name] for name in (
    "HOSTCHECK", "EXAMPLE_HOST", "REFERENCE_HOST", "BROKEN_HOST", "PLUGIN"))
# Sanitizers report crashes in their own way, and their allocator does not tell what is in use.
SANITIZED = bool(os.environ["ACECONV_SANITIZE"])
CRASHES = " crashes, or what follows it does: "
GROWS = " leaves memory in use: "

# A fault of broken_host.c, and what the first line says after the name of the trial.
FAULTS = {
    "nodes_out_of_order": 'ccv_yang_iter_first shows "grant" where "sequence-number" "10" comes next',
    "list_entries_as_nodes": "ccv_yang_iter_first shows \"udf-name\" where the entries of the list \"udf\" come",
    "no_tree": "hostcheck_tree_create makes no tree of valid rows",
    "iterator_not_set": "ccv_yang_iter_create reports success and sets no iterator",
    "creation_fails": "ccv_yang_iter_create fails with 0x77 where nothing is wrong",
    "one_walk_for_all": "ccv_yang_iter_next moves one walk with another",
    "never_active": "ccv_yang_iter_is_active is 0 before the first pass",
    "always_active": "ccv_yang_iter_is_active is not 0 after the last pass",
    "first_clears_status": "ccv_yang_iter_first clears or changes the status",
    "first_passes_over": 'ccv_yang_iter_first shows "grant" where "sequence-number" "10" comes next',
    "index_from_1": "ccv_yang_iter_first keeps index at 1 on entry 0 of the list",
    "finished_on_last_node": 'ccv_yang_iter_is_finished says that "source-network" is at its end, and '
                             '"source-prefix-length" "24" is still to come',
    "levels_do_not_end": 'ccv_yang_iter_next shows "source-prefix-length" in "source-network" a second time',
    "hangs": "ccv_yang_iter_is_finished does not come back",
    "stays_inside": "ccv_yang_iter_next does not go on behind a container or list that was entered: "
                    '"source-network", and "destination-network" is still to come',
    "pops_too_early": "ccv_yang_iter_next leaves a level too early: behind the last node of "
                      '"source-network" it shows "destination-network", where the end comes first',
    "passes_over_a_node": 'ccv_yang_iter_next shows "packet-length" where "tcp" comes next',
    "next_clears_status": "ccv_yang_iter_next clears or changes the status",
    "next_fails": "ccv_yang_iter_next fails with 0x77 where nothing is wrong",
    "index_stays": "ccv_yang_iter_next keeps index at 0 on entry 1 of the list",
    "walk_uses_up_the_tree": "ccv_yang_iter_first shows the end of the entry, and \"sequence-number\" \"10\" "
                             "is still to come",
    "null_iterator": "ccv_yang_iter_destroy" + CRASHES,
    "walks_are_kept": "ccv_yang_iter_destroy" + GROWS,
    "names_with_prefix": 'ccv_yang_get_node_name gives "ab:sequence-number", a name with a prefix',
    "names_do_not_last": "ccv_yang_get_node_name gives a name that does not last as long as the tree: "
                         '"sequence-number" has become "sequence-str"',
    "null_name": "ccv_yang_get_node_name gives null for a name",
    "uint8_writes_4_bytes": "ccv_yang_get_uint8 writes more than the 1 bytes of its destination",
    "uint8_cuts": 'ccv_yang_get_uint8 accepts "256"',
    "uint16_writes_4_bytes": "ccv_yang_get_uint16 writes more than the 2 bytes of its destination",
    "failure_changes_destination": "ccv_yang_get_uint16 fails and changes its destination",
    "failure_is_success": 'ccv_yang_get_uint16 accepts "65536"',
    "crashes": "ccv_yang_get_uint16" + CRASHES,
    "uint32_is_signed": "ccv_yang_get_uint32 fails with 0x77 where nothing is wrong",
    "table_ends_at_value_0": "ccv_yang_get_enum fails with 0x2 where nothing is wrong",
    "names_may_be_cut": 'ccv_yang_get_enum accepts "perm"',
    "case_is_ignored": 'ccv_yang_get_enum accepts "Permit"',
    "names_alone": "ccv_yang_get_enum_or_uint32 fails with 0x2 where nothing is wrong",
    "unknown_bits_pass": 'ccv_yang_get_bits accepts "fin syx"',
    "bits_from_1": 'ccv_yang_get_bits gives 34 for "fin ack", not 17',
    "true_is_255": 'ccv_yang_get_bool gives 255 for "true", not 1',
    "exits": "ccv_yang_get_bool ends the process",
    "address_turned_round": 'ccv_yang_ipv4 keeps "77.2.0.192" as the value of "source-address", '
                            'not "192.0.2.77"',
    "reader_gives_its_own": "ccv_yang_get_string gives the same block twice",
    "reader_gives_no_block": "ccv_yang_get_string" + CRASHES,
    "reader_frees": "ccv_yang_get_string gives something else when the leaf is read again",
    "one_entry_too_many": "ccv_yang_get_list_entry_count gives 4 for a list of 3 entries",
    "ends_two_levels": "ccv_yang_container_end or an emitter like it puts nodes on the wrong level",
    "presence_is_ignored": 'ccv_yang_presence loses the node: "fragments" was written and is not shown',
    "entries_out_of_order": 'ccv_yang_list_entry_begin does not keep the order of the calls: the entry of '
                            '"udf-name" "alpha" is shown where that of "udf-name" "zulu" was written',
    "value_without_row_passes": "ccv_yang_enum takes what it cannot write, and keeps no failure",
    "always_a_number": 'ccv_yang_enum_or_uint32 keeps "589823" as the value of "icmp-type-code", not "echo"',
    "bit_without_row_passes": "ccv_yang_bits takes what it cannot write, and keeps no failure",
    "failure_is_forgotten": "ccv_yang_uint32 changes the failure that the output keeps",
    "number_is_signed": 'ccv_yang_uint32 keeps "-1" as the value of "source-prefix-length", not "4294967295"',
    "text_of_all_threads": "with several threads ccv_yang_uint32 keeps ",
    "leaves_out_of_order": 'ccv_yang_ipv4 does not keep the order of the calls: "source-wild-card-bits" '
                           '"0.0.0.255" is shown where "source-address" "192.0.2.77" was written',
    "true_is_1_alone": 'ccv_yang_bool keeps "false" as the value of "capture", not "true"',
    "null_text_passes": "ccv_yang_string takes what it cannot write, and keeps no failure (a null text)",
    "control_characters_pass": "ccv_yang_string takes what it cannot write, and keeps no failure (a control",
    "no_failure_is_kept": "ccv_yang_string changes the failure that the output keeps",
    "text_is_not_copied": 'ccv_yang_string keeps "####" as the value of "vrf-name", not "blue"',
    "empty_leaf_is_lost": 'ccv_yang_empty loses the node: "icmp-off" "" was written and is not shown',
    "abort_registers": "bag_register_abort leaves the type registered",
    "definition_not_set": "bag_definition_init reports success and sets no definition",
    "definitions_are_kept": "bag_definition_free" + GROWS,
    "second_mask_is_lost": "bag_decode_v3 or bag_encode_v3 does not bring back the member ConfigurationMask2",
    "encoding_changes_the_record": "bag_encode_v3 changes the record",
    "reads_beyond_the_bytes": "bag_decode_v3" + CRASHES,
    "memory_must_be_cleared": "bag_decode_v3 or bag_encode_v3 does not bring back the member Priority: "
                              "every member comes back, also into memory that was not cleared",
    "encoding_holds_addresses": "bag_decode_v3 gives the block that was encoded as remark",
    "records_share_blocks": "bag_decode_v3 gives two records one block for remark",
    "cut_bytes_pass": "bag_decode_v3 accepts an encoding that is cut off",
    "failed_record_owns": "bag_decode_v3" + GROWS,
    "stored_fields_are_lost": "bag_decode does not bring back the member UDF",
    "count_is_trusted": "bag_free_indirections" + CRASHES,
    "blocks_are_kept": "bag_free_indirections" + GROWS,
    "pointers_are_kept": "bag_free_indirections does not clear the pointers of what it releases",
    "no_filter_flag": "ipv4_acl_get_dll_func_regexec gives null",
    "append_copies": '__strncat_to_buf gives " " (" " to "+syn", room for 56)',
    "room_is_ignored": '__strncat_to_buf gives "abcdef" ("bcdef" to "a", room for 3)',
}


def check(*words, **env):
    done = subprocess.run([HOSTCHECK, "--plugin", PLUGIN, *words], env={**os.environ, **env},
                          check=False, capture_output=True, text=True, timeout=300)
    return done.returncode, done.stdout, done.stderr


class HostCheck(unittest.TestCase):
    def test_a_host_that_keeps_its_promises(self):
        for host, backend in ((EXAMPLE, ""), (BROKEN, ""), (REFERENCE, "bulk"),
                              (REFERENCE, "validating")):
            code, out, err = check(host, HOST_BACKEND=backend)
            self.assertEqual((code, err), (0, ""), out)
            self.assertRegex(out, r"\A\S+: 17 trials, 0 of them found a broken promise\n\Z")

    def test_each_fault_is_told(self):
        source = (pathlib.Path(__file__).parent / "broken_host.c").read_text()
        self.assertEqual(set(re.findall(r'broken\("(\w+)"\)', source)), set(FAULTS))
        faults = [fault for fault, words in FAULTS.items()
                  if not SANITIZED or not (CRASHES in words or GROWS in words)]
        with concurrent.futures.ThreadPoolExecutor(4) as pool:
            runs = pool.map(lambda fault: check("--first", "--limit", "1" if fault == "hangs" else "60",
                                                BROKEN, HOST_FAULT=fault), faults)
            for fault, (code, out, _) in zip(faults, runs):
                with self.subTest(fault):
                    self.assertEqual(code, 1, out)
                    first, last = out.splitlines()
                    self.assertIn(": " + FAULTS[fault], first)
                    self.assertRegex(last, r": \d+ trials, 1 of them found a broken promise$")

    def test_every_trial_is_done(self):
        code, out, _ = check(BROKEN, HOST_FAULT="creation_fails")
        *broken, last = out.splitlines()
        self.assertEqual(code, 1)
        self.assertIn(f" 17 trials, {len(broken)} of them", last)
        self.assertGreater(len(broken), 5)

    def test_what_is_no_host(self):
        for words, code, said in ((["/nowhere.so"], 1, "loading: /nowhere.so: cannot open"),
                                  ([PLUGIN], 1, "undefined symbol"),
                                  ([EXAMPLE, "--plugin", EXAMPLE], 1, "does not export "),
                                  ([], 2, "usage: "), (["--limit", "0", EXAMPLE], 2, "usage: "),
                                  ([EXAMPLE, EXAMPLE], 2, "usage: ")):
            with self.subTest(words):
                found, out, err = check(*words)
                self.assertEqual(found, code)
                self.assertIn(said, out + err)

    def test_words_that_cannot_be_written(self):
        for words in (["--help"], ["--version"], [EXAMPLE, "--plugin", PLUGIN]):
            shown = subprocess.run([HOSTCHECK, *words], check=True, capture_output=True, text=True)
            self.assertRegex(shown.stdout, r"hostcheck [\[\d]|: 17 trials")
            with open("/dev/full", "w", encoding="ascii") as full:
                lost = subprocess.run([HOSTCHECK, *words], check=False, stdout=full, stderr=subprocess.PIPE)
            self.assertEqual((lost.returncode, b"cannot write" in lost.stderr), (3, True), words)


if __name__ == "__main__":
    unittest.main()
