"""Which entries of a NETCONF reply permit telnet? Exits 1 if one does.

The reply is read from a file here; `manager.get_config(...)` of ncclient returns the same object.
"""
import sys

import aceconv
from lxml import etree
from ncclient.operations.retrieve import GetReply

reply = GetReply(open(sys.argv[1], encoding="utf-8").read())
reply.parse()
acls = etree.tostring(reply.data_ele.find("{urn:aceconv:base}acls"))
found, count = False, 0
converter = aceconv.Converter("base")
for entry in aceconv.iter_entries(acls, format="xml"):
    count += 1
    ace = converter.decode(converter.encode(entry.data))  # numbers for names, whatever was typed
    port = ace.get("destination-port", {}).get("first-destination-port")
    if ace.get("grant") == "permit" and port == 23 and "source-network" not in ace:
        print(f"{entry.list} {entry.sequence}: permits telnet from anywhere")
        found = True
print(f"{count} entries looked at")
sys.exit(found)
