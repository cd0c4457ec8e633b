// SPDX-License-Identifier: Apache-2.0
#pragma once

/// Enumerations of the CMPI C interface beside the return codes.

#include "platform/cmpi/abi/cmpidt.h"

#ifdef __cplusplus
extern "C" {
#endif

// NOLINTBEGIN(readability-identifier-naming): the names are fixed by the interface.

/// Comparison of a predicate.
typedef enum CMPIPredOp CMPI_INT_ENUM {
  CMPI_PredOp_Equals = 1,
  CMPI_PredOp_NotEquals = 2,
  CMPI_PredOp_LessThan = 3,
  CMPI_PredOp_GreaterThanOrEquals = 4,
  CMPI_PredOp_GreaterThan = 5,
  CMPI_PredOp_LessThanOrEquals = 6,
  CMPI_PredOp_Isa = 7,
  CMPI_PredOp_NotIsa = 8,
  CMPI_PredOp_Like = 9,
  CMPI_PredOp_NotLike = 10,
  CMPI_PredOp_Not_Null = 11,
  CMPI_PredOp_Null = 12,
  CMPI_PredOp_And = 13,
  CMPI_PredOp_Or = 14
} CMPIPredOp;

/// Severity of a log message.
typedef enum CMPISeverity CMPI_INT_ENUM {
  CMPI_SEV_ERROR = 1,
  CMPI_SEV_INFO = 2,
  CMPI_SEV_WARNING = 3,
  CMPI_DEV_DEBUG = 4
} CMPISeverity;

/// Level of a trace message.
typedef enum CMPILevel CMPI_INT_ENUM {
  CMPI_LEV_INFO = 1,
  CMPI_LEV_WARNING = 2,
  CMPI_LEV_VERBOSE = 3
} CMPILevel;

/// Form of a condition: disjunctive or conjunctive.
typedef enum CMPISelectCondType CMPI_INT_ENUM {
  CMPI_COND_DOC = 0,
  CMPI_COND_COD = 1
} CMPISelectCondType;

/// Kind of error, as CIM_Error.ErrorType.
typedef enum CMPIErrorType CMPI_INT_ENUM {
  UnknownErrorType = 0,
  OtherErrorType = 1,
  CommunicationsError = 2,
  QualityOfServiceError = 3,
  SoftwareError = 4,
  HardwareError = 5,
  EnvironmentalError = 6,
  SecurityError = 7,
  OversubscriptionError = 8,
  Oversubscription_Error = 8,
  UnavailableResourceError = 9,
  UnsupportedOperationError = 10
} CMPIErrorType;

/// As CIM_Error.PerceivedSeverity.
typedef enum CMPIErrorSeverity CMPI_INT_ENUM {
  ErrorSevUnknown = 0,
  ErrorSevLow = 2,
  ErrorSevMedium = 3,
  ErrorSevHigh = 4,
  ErrorSevFatal = 5
} CMPIErrorSeverity;

/// As CIM_Error.ErrorSourceFormat.
typedef enum CMPIErrorSrcFormat CMPI_INT_ENUM {
  CMPIErrSrcUnknown = 0,
  CMPIErrSrcOther = 1,
  CIMObjectHandle = 2
} CMPIErrorSrcFormat;

/// Code pages that texts are converted from and to.
typedef enum CMPICodepageID CMPI_INT_ENUM {
  CMPI_CPID_SYSTEM = 1,
  CMPI_CPID_USASCII = 2,
  CMPI_CPID_UTF16 = 3
} CMPICodepageID;

/// As CIM_Error.ProbableCause.
typedef enum CMPIErrorProbableCause CMPI_INT_ENUM {
  ErrorProbCauseUnknown,
  ErrorProbCauseOther,
  Adapter_Card_Error,
  Application_Subsystem_Failure,
  Bandwidth_Reduced,
  Connection_Establishment_Error,
  Communications_Protocol_Error,
  Communications_Subsystem_Failure,
  ConfigurationCustomization_Error,
  Congestion,
  Corrupt_Data,
  CPU_Cycles_Limit_Exceeded,
  DatasetModem_Error,
  Degraded_Signal,
  DTE_DCE_Interface_Error,
  Enclosure_Door_Open,
  Equipment_Malfunction,
  Excessive_Vibration,
  File_Format_Error,
  Fire_Detected,
  Flood_Detected,
  Framing_Error,
  HVAC_Problem,
  Humidity_Unacceptable,
  IO_Device_Error,
  Input_Device_Error,
  LAN_Error,
  Non_Toxic_Leak_Detected,
  Local_Node_Transmission_Error,
  Loss_of_Frame,
  Loss_of_Signal,
  Material_Supply_Exhausted,
  Multiplexer_Problem,
  Out_of_Memory,
  Output_Device_Error,
  Performance_Degraded,
  Power_Problem,
  Pressure_Unacceptable,
  Processor_Problem,
  Pump_Failure,
  Queue_Size_Exceeded,
  Receive_Failure,
  Receiver_Failure,
  Remote_Node_Transmission_Error,
  Resource_at_or_Nearing_Capacity,
  Response_Time_Excessive,
  Retransmission_Rate_Excessive,
  Software_Error,
  Software_Program_Abnormally_Terminated,
  Software_Program_Error,
  Storage_Capacity_Problem,
  Temperature_Unacceptable,
  Threshold_Crossed,
  Timing_Problem,
  Toxic_Leak_Detected,
  Transmit_Failure,
  Transmitter_Failure,
  Underlying_Resource_Unavailable,
  Version_Mismatch,
  Previous_Alert_Cleared,
  Login_Attempts_Failed,
  Software_Virus_Detected,
  Hardware_Security_Breached,
  Denial_of_Service_Detected,
  Security_Credential_Mismatch,
  Unauthorized_Access,
  Alarm_Received,
  Loss_of_Pointer,
  Payload_Mismatch,
  Transmission_Error,
  Excessive_Error_Rate,
  Trace_Problem,
  Element_Unavailable,
  Element_Missing,
  Loss_of_Multi_Frame,
  Broadcast_Channel_Failure,
  Invalid_Message_Received,
  Routing_Failure,
  Backplane_Failure,
  Identifier_Duplication,
  Protection_Path_Failure,
  Sync_Loss_or_Mismatch,
  Terminal_Problem,
  Real_Time_Clock_Failure,
  Antenna_Failure,
  Battery_Charging_Failure,
  Disk_Failure,
  Frequency_Hopping_Failure,
  Loss_of_Redundancy,
  Power_Supply_Failure,
  Signal_Quality_Problem,
  Battery_Discharging,
  Battery_Failure,
  Commercial_Power_Problem,
  Fan_Failure,
  Engine_Failure,
  Sensor_Failure,
  Fuse_Failure,
  Generator_Failure,
  Low_Battery,
  Low_Fuel,
  Low_Water,
  Explosive_Gas,
  High_Winds,
  Ice_Buildup,
  Smoke,
  Memory_Mismatch,
  Out_of_CPU_Cycles,
  Software_Environment_Problem,
  Software_Download_Failure,
  Element_Reinitialized,
  Timeout,
  Logging_Problems,
  Leak_Detected,
  Protection_Mechanism_Failure,
  Protecting_Resource_Failure,
  Database_Inconsistency,
  Authentication_Failure,
  Breach_of_Confidentiality,
  Cable_Tamper,
  Delayed_Information,
  Duplicate_Information,
  Information_Missing,
  Information_Modification,
  Information_Out_of_Sequence,
  Key_Expired,
  Non_Repudiation_Failure,
  Out_of_Hours_Activity,
  Out_of_Service,
  Procedural_Error,
  Unexpected_Information
} CMPIErrorProbableCause;

// NOLINTEND(readability-identifier-naming)

#ifdef __cplusplus
}
#endif
