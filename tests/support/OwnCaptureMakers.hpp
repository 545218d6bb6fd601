#pragma once

// What makes each of the own captures: OwnCaptures.cpp lists them with their counts.

#include "support/CaptureMaker.hpp"

namespace TalTest::OwnCaptureMakers {

/// Octets of a signature, as Reserved 2 tells them.
inline constexpr std::uint16_t kSignatureSize = 32;

// OwnGooseCaptures.cpp

/// Three relays from before a fault until their heartbeats are slow again, and other protocols.
MadeCapture gooseRetransmissions();
/// Data sets of every type, nested, and empty where a type can be.
MadeCapture gooseEveryType();
/// All integers in five octets, as some relays send them.
MadeCapture gooseFiveOctetIntegers();
/// Long-form lengths of one and of two octets, where the shortest form would do.
MadeCapture gooseLongLengths();
/// Lengths of three and of four octets, which the library indexes and does not decode.
MadeCapture gooseLongestLengths();
/// Both ways round an HSR ring.
MadeCapture gooseHsr();
/// Both LANs of PRP; some trailers look like elements that change nothing.
MadeCapture goosePrp();
/// Signatures after the PDU, without and with VLAN ids.
MadeCapture gooseSigned();
/// Trailers and signatures that are read as a second goosePdu.
MadeCapture gooseTrailersAsElements();
/// One stream without a tag and with a priority tag, and another with a VLAN id.
MadeCapture goosePriorityTag();
/// Elements left out, one after the other, unknown ones between, and no goosePdu at all.
MadeCapture gooseOddElements();
/// Frames cut to 70 octets, inside datSet.
MadeCapture gooseSnapped();
/// The last record is a GOOSE frame of which octets are missing.
MadeCapture gooseCutLastRecord();

// OwnSvCaptures.cpp

/// Two merging units with one ASDU, and one with eight consecutive samples in a frame.
MadeCapture svMergingUnits();
/// Thirteen publishers of 1 to 13 ASDUs, each of another svID, with and without optional elements.
MadeCapture svManyAsdus();
/// Thirteen ASDUs whose data are no samples: twelve octets.
MadeCapture svTwelveOctets();
/// Both ways round an HSR ring.
MadeCapture svHsr();
/// Both LANs of PRP; sequence numbers wrap, and some trailers look like elements that change
/// nothing.
MadeCapture svPrp();
/// Signatures after the PDU, without and with VLAN ids.
MadeCapture svSigned();
/// Trailers and signatures that are read as elements of the savPdu and of an ASDU.
MadeCapture svTrailersAsElements();
/// Elements left out and unknown ones.
MadeCapture svOddElements();

// OwnFileCaptures.cpp

/// The same GOOSE, SV and other frames in each of the four classic variants.
MadeCapture mixedMicroLittle();
MadeCapture mixedMicroBig();
MadeCapture mixedNanoLittle();
MadeCapture mixedNanoBig();
/// The same streams seen at two places of a network, each with frames that the other has not.
MadeCapture viewpointA();
MadeCapture viewpointB();
/// Times that go backwards; the last record, of another protocol, is cut.
MadeCapture timesBackwards();
/// Other protocols, tagged and not, stacked VLAN tags, and frames too short for a header.
MadeCapture nothingToIndex();
/// Records of another link type, among them some that could be Ethernet frames.
MadeCapture otherLinkType();
/// A next-generation file of GOOSE frames.
MadeCapture nextGeneration();

}  // namespace TalTest::OwnCaptureMakers
