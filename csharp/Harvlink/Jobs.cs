using System.Collections.Generic;
using Harvlink.Native;

namespace Harvlink
{
    /// <summary>What a task executes.</summary>
    public sealed class Job
    {
        internal Job(string name, uint line, uint step, double speedOverride)
        {
            Name = name;
            Line = (int)line;
            Step = (int)step;
            SpeedOverride = speedOverride;
        }

        /// <summary>The name; empty if no job runs.</summary>
        public string Name { get; }

        /// <summary>The line.</summary>
        public int Line { get; }

        /// <summary>The step.</summary>
        public int Step { get; }

        /// <summary>Per cent of the programmed speed.</summary>
        public double SpeedOverride { get; }
    }

    /// <summary>The running job, and the one that a start runs.</summary>
    public sealed unsafe class Jobs
    {
        private const int StackPlaces = 12;
        private const string NoJob = "none";
        private readonly Link link;

        internal Jobs(Link link)
        {
            this.link = link;
        }

        /// <summary>Selects the job that <see cref="ControlCommands.StartJob"/> runs, from a line (0 to 9999) on. The name may be
        /// in any case, with or without ".JBI".</summary>
        public void Select(string name, int line = 0)
        {
            uint from = Checked.NotNegative(line, nameof(line));
            using (var handle = link.Hold())
            {
                fixed (byte* text = link.Text.Encode(name))
                {
                    link.Settle(Functions.job_interface_set_active_job(handle, text, from));
                }
            }
        }

        /// <summary>Reads the job that a task executes.</summary>
        public Job ReadExecuting(TesselTaskNumber task = TesselTaskNumber.Master)
        {
            IJobData record;
            using (var handle = link.Hold())
            {
                var status = Functions.job_interface_get_executing_job_information(handle, (int)task, &record);
                string name = link.Text.Take(record.name);
                link.Settle(status);
                return new Job(name, record.line, record.stepNumber, record.speedOverride);
            }
        }

        /// <summary>Reads the names of the jobs on a task's call stack, twelve at most. Newer controllers only.</summary>
        public IReadOnlyList<string> ReadStack(TesselTaskNumber task = TesselTaskNumber.Master)
        {
            IJobStack record;
            using (var handle = link.Hold())
            {
                var status = Functions.job_interface_get_job_stack(handle, (int)task, &record);
                var names = new List<string>();
                byte** places = &record.job0;
                for (int place = 0; place < StackPlaces; ++place)
                {
                    names.Add(link.Text.Take(places[place]));
                }
                link.Settle(status);
                names.RemoveAll(name => name == NoJob);
                return names;
            }
        }
    }
}
